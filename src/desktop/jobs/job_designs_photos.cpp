#include <QListWidget>

#include "core/base/files.h"
#include "core/base/text.h"
#include "desktop/jobs/job_designs.h"
#include "desktop/jobs/photo_frame.h"
#include "desktop/kit/text.h"
#include "paper/photo_maker.h"

// The photos of a Design in its window.

namespace vellumark::desktop {
namespace {

constexpr QSize kThumbnail{96, 64};
constexpr QSize kLarge{1600, 1200};

}  // namespace

void JobDesigns::BuildPhotos(Form form) {
  frame_ = new PhotoFrame("picPhoto");
  imageName_ = form.Label("lblImageName");
  photos_ = new QListWidget;
  photos_->setObjectName("lstPhotos");
  photos_->setAccessibleName(tr("Photos of the Design"));
  photos_->setFlow(QListView::LeftToRight);
  photos_->setWrapping(false);
  photos_->setViewMode(QListView::IconMode);
  photos_->setMovement(QListView::Static);
  photos_->setIconSize(kThumbnail);
  photos_->setFixedHeight(kThumbnail.height() + 48);
  form.Wide(imageName_);
  form.Wide(frame_, 1);
  form.Wide(photos_);
  auto* get = form.Button("cmdGetPhoto", tr("&Get"));
  use_ = form.Button("cmdUsePhoto", tr("&Use"));
  auto* remove = form.Button("cmdRemovePhoto", tr("Re&move"));
  auto* rename = form.Button("cmdRenamePhoto", tr("Re&name photo"));
  auto* previous = form.Button("cmdPrevious", tr("Pre&vious"));
  auto* next = form.Button("cmdNext", tr("Ne&xt"));
  form.ButtonsWithoutDefault({get, use_, rename, remove, previous, next});
  ofDesign_.push_back(get);
  ofPhoto_ = {remove, rename, previous, next};
  connect(frame_, &PhotoFrame::Dropped, this, &JobDesigns::Get);
  connect(photos_, &QListWidget::currentRowChanged, this, [this] {
    if (showing_) return;
    picked_.reset();
    ShowPhoto();
  });
}

int JobDesigns::CurrentPhoto() const {
  return work_ && photos_->currentRow() < static_cast<int>(work_->photos.size()) ? photos_->currentRow() : -1;
}

// The pictures come one by one, as they are decoded.
void JobDesigns::ListPhotos() {
  const bool before = std::exchange(showing_, true);
  const int row = photos_->currentRow();
  photos_->clear();
  thumbnails_->Drop();
  const std::size_t count = work_ ? work_->photos.size() : 0;
  for (std::size_t i = 0; i < count; ++i) {
    const LinkedPhoto& photo = work_->photos[i];
    photos_->addItem(new QListWidgetItem(Q(photo.name)));
    const int place = static_cast<int>(i);
    const auto file = photo.jpeg.empty() ? PhotoFile(session, photo.from.empty() ? photo.name : photo.from)
                                         : std::optional<std::filesystem::path>();
    if (photo.jpeg.empty() && !file) continue;
    thumbnails_->Load([file, jpeg = photo.jpeg] { return file ? ReadFileBytes(*file) : jpeg; }, kThumbnail,
                      [this, place](const QImage& image) {
                        if (QListWidgetItem* item = photos_->item(place); item != nullptr && !image.isNull())
                          item->setIcon(QIcon(QPixmap::fromImage(image)));
                      });
  }
  if (count > 0) photos_->setCurrentRow(std::clamp(row, 0, static_cast<int>(count) - 1));
  showing_ = before;
  ShowPhoto();
}

void JobDesigns::ShowPhoto() {
  pictures_->Drop();
  const int place = CurrentPhoto();
  QString name;
  QString empty = work_ ? tr("Get a photo, or drop a picture here") : QString();
  std::function<std::string()> read;
  if (picked_) {
    name = tr("%1 - not linked yet: press Use").arg(Q(picked_->name));
    read = [jpeg = picked_->jpeg] { return jpeg; };
  } else if (place >= 0) {
    const LinkedPhoto& photo = work_->photos[static_cast<std::size_t>(place)];
    name = tr("%1 (%2 of %3)").arg(Q(photo.name)).arg(place + 1).arg(work_->photos.size());
    if (IsPhotoMissing(session, photo)) {
      const Refusal missing = MissingPhoto(photo.name);
      empty = Q(missing.title + "\n\n" + missing.text);
    } else {
      const auto file = photo.jpeg.empty() ? PhotoFile(session, photo.from.empty() ? photo.name : photo.from)
                                           : std::optional<std::filesystem::path>();
      read = [file, jpeg = photo.jpeg] { return file ? ReadFileBytes(*file) : jpeg; };
    }
  }
  imageName_->setText(name);
  frame_->Show({}, read ? QString() : empty);
  if (read)
    pictures_->Load(std::move(read), kLarge, [this, empty](const QImage& image) { frame_->Show(image, empty); });
  Changed();
}

void JobDesigns::Get(const QString& path) {
  if (!work_ || path.isEmpty()) return;
  Result<PickedPhoto> picked = PickedPhoto{};
  {
    const auto wait = Wait(WaitKind::WaitingForm, tr("Reading Photo ..."));
    picked = PickPhoto(paper::JpegMaker(), std::filesystem::path(U8(path)));
  }
  if (!Accepted(picked)) return;
  picked_ = *std::move(picked);
  ShowPhoto();
  use_->setFocus();
}

void JobDesigns::cmdGetPhoto_Click() {
  Get(choose_({tr("Select Photo for Job Design"), tr("Photo (*.jpg *.jpeg *.png)"), {}, {}, false}, this));
}

void JobDesigns::cmdUsePhoto_Click() {
  if (!work_ || !picked_ || !Accepted(UsePhoto(session, *work_, *picked_))) return;
  picked_.reset();
  ListPhotos();
  photos_->setCurrentRow(photos_->count() - 1);
}

void JobDesigns::cmdRemovePhoto_Click() {
  if (picked_) {
    picked_.reset();
  } else if (const int place = CurrentPhoto(); place >= 0) {
    const std::string name = work_->photos[static_cast<std::size_t>(place)].name;
    if (!Accepted(RemovePhoto(session, *work_, name))) return;
  }
  ListPhotos();
}

void JobDesigns::cmdRenamePhoto_Click() {
  const int place = CurrentPhoto();
  if (picked_) {
    windows.RunDialog("JobDesign_PhotoRename", {{"Picked", &*picked_}, {"PhotoName", picked_->name}});
    return ShowPhoto();
  }
  if (place < 0) return;
  const std::string name = work_->photos[static_cast<std::size_t>(place)].name;
  if (windows.RunDialog("JobDesign_PhotoRename", {{"Work", &*work_}, {"PhotoName", name}})) ListPhotos();
}

void JobDesigns::StepPhoto(int by) {
  picked_.reset();
  if (photos_->count() > 0) {
    photos_->setCurrentRow((std::max(0, photos_->currentRow()) + by + photos_->count()) % photos_->count());
  }
  ShowPhoto();
}

}  // namespace vellumark::desktop
