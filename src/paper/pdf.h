#pragma once

#include <QPagedPaintDevice>
#include <array>
#include <filesystem>
#include <functional>
#include <memory>

#include "core/base/seams.h"
#include "core/base/sheet.h"
#include "paper/sheet_layout.h"

class QGuiApplication;

namespace vellumark::paper {

/// What fonts need in a program that shows no windows. Stays for as long as there is something to print; nothing where
/// the program has windows.
class OffscreenFonts {
 public:
  OffscreenFonts();
  ~OffscreenFonts();
  OffscreenFonts(const OffscreenFonts&) = delete;
  OffscreenFonts& operator=(const OffscreenFonts&) = delete;

 private:
  // The application takes the words away that it knows.
  int count_ = 3;
  std::array<char*, 4> words_{const_cast<char*>("vellumark"), const_cast<char*>("-platform"),
                              const_cast<char*>("offscreen"), nullptr};
  std::unique_ptr<QGuiApplication> application_;
};

/// Paints pages onto a printer or into a PDF as they are set; the first to the last of `range` when it is told.
struct PageRange {
  int first = 1;
  int last = 0;  ///< 0: to the end
};
/// The number of pages that were painted. Throws Failure, naming `device`, when it takes none.
int PaintPages(QPagedPaintDevice& device, const std::string& name, SheetLayout& layout, PageRange range,
               Progress& progress);

/// Writes a PDF of that resolution, beside its place until it is whole. `paint` answers the number of its pages, 0 for
/// a file that is not wanted, and may ask whether writing has failed. Throws Failure naming the file.
int WritePdfPages(const std::filesystem::path& file, const std::string& title, int dotsPerInch,
                  const std::function<int(QPagedPaintDevice&, const std::function<bool()>& failed)>& paint);

/// Writes the sheet as a PDF, beside its place until it is whole. The number of its pages; 0 when the operator stopped
/// it, and then no file. Throws Failure naming the file.
int WritePdf(const std::filesystem::path& file, const std::string& title, SheetLayout& layout, Progress& progress);

}  // namespace vellumark::paper
