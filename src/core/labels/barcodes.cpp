#include "core/labels/barcodes.h"

#include <algorithm>
#include <array>

namespace vellumark {
namespace {

constexpr std::array<std::string_view, 4> kNames{"Not Using", "Code 3 of 9", "Code 3 of 9 with Check Sum", "Code 128"};
constexpr std::string_view kAlphabet = "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ-. $/+%";

// A character as it stands in a UTF-8 text, and its number in the code page; 0xFFFF for one that has none there.
struct Letter {
  std::string_view bytes;
  int code = 0;
};

std::vector<Letter> LettersOf(std::string_view text) {
  std::vector<Letter> letters;
  for (std::size_t at = 0; at < text.size();) {
    const auto first = static_cast<unsigned char>(text[at]);
    const std::size_t length = std::min<std::size_t>(text.size() - at, first < 0x80   ? 1
                                                                       : first < 0xE0 ? 2
                                                                       : first < 0xF0 ? 3
                                                                                      : 4);
    int code = first;
    if (length == 2) code = ((first & 0x1F) << 6) | (static_cast<unsigned char>(text[at + 1]) & 0x3F);
    if (length > 2) code = 0xFFFF;
    letters.push_back({text.substr(at, length), code});
    at += length;
  }
  return letters;
}

std::unexpected<Refusal> BadCharacter(std::string_view character) {
  return Refuse("Bad Barcode Character", "The character \"" + std::string(character) +
                                             "\" cannot be used in this barcode. \nPlease re-enter data not using this "
                                             "character.");
}

enum class CodeSet { A, B, C };
// Characters of the font.
constexpr int kStartA = 203;
constexpr int kStop = 206;
constexpr int kValueA = 103;

bool IsDigit(int code) {
  return code >= '0' && code <= '9';
}

class Code128Writer {
 public:
  explicit Code128Writer(std::vector<Letter> letters) : letters_(std::move(letters)) {}

  FontString Write() {
    if (letters_.empty()) return {};
    set_ = SetAt(0);
    const int set = static_cast<int>(set_);
    checksum_ = static_cast<std::int16_t>(kValueA + set);
    font_.push_back(kStartA + set);
    while (at_ < letters_.size()) {
      if (set_ == CodeSet::C)
        TakePairs();
      else
        TakeOne();
      if (at_ < letters_.size()) Switch(SetAt(at_));
    }
    const int rest = checksum_ % 103;
    font_.push_back(rest < 95 ? rest + 32 : rest + 100);
    font_.push_back(kStop);
    return std::move(font_);
  }

 private:
  CodeSet SetAt(std::size_t at) const {
    const int code = letters_[at].code;
    if (code < 32) return CodeSet::A;
    if (!IsDigit(code) || letters_.size() - at < 4) return CodeSet::B;
    for (std::size_t i = at; i < at + 4; ++i)
      if (!IsDigit(letters_[i].code)) return CodeSet::B;
    return CodeSet::C;
  }
  // In 16 bits, as it always was: of a long text the sum wraps, and the check says so.
  void Add(int value) {
    checksum_ = static_cast<std::int16_t>(static_cast<std::uint16_t>(checksum_ + weight_ * value));
  }
  void Put(int value, int character) {
    Add(value);
    ++weight_;
    font_.push_back(character);
  }
  void TakeOne() {
    const int code = letters_[at_++].code;
    if (code < 127)
      Put(code - 32, code);
    else if (code >= 195 && code <= 202)
      Put(code / 100 - 100, code);
  }
  void TakePairs() {
    while (at_ + 1 < letters_.size() && IsDigit(letters_[at_].code) && IsDigit(letters_[at_ + 1].code)) {
      const int value = (letters_[at_].code - '0') * 10 + letters_[at_ + 1].code - '0';
      Put(value, value > 94 ? value + 100 : value + 32);
      at_ += 2;
    }
  }
  void Switch(CodeSet set) {
    if (set == set_) return;
    const int value = 101 - static_cast<int>(set);
    Put(value, value + 100);
    set_ = set;
  }

  std::vector<Letter> letters_;
  std::size_t at_ = 0;
  CodeSet set_ = CodeSet::B;
  std::int16_t checksum_ = 0;
  int weight_ = 1;
  FontString font_;
};

char CheckOf39(std::string_view text) {
  std::size_t sum = 0;
  for (const char c : text) sum += kAlphabet.find(c);
  return kAlphabet[sum % kAlphabet.size()];
}

// Bars and spaces of the values 0 to 105 and of the stop, as the standard of Code 128 has them.
constexpr std::array<std::string_view, 107> kBars128{
    "212222", "222122", "222221", "121223", "121322", "131222", "122213", "122312", "132212", "221213", "221312",
    "231212", "112232", "122132", "122231", "113222", "123122", "123221", "223211", "221132", "221231", "213212",
    "223112", "312131", "311222", "321122", "321221", "312212", "322112", "322211", "212123", "212321", "232121",
    "111323", "131123", "131321", "112313", "132113", "132311", "211313", "231113", "231311", "112133", "112331",
    "132131", "113123", "113321", "133121", "313121", "211331", "231131", "213113", "213311", "213131", "311123",
    "311321", "331121", "312113", "312311", "332111", "314111", "221411", "431111", "111224", "111422", "121124",
    "121421", "141122", "141221", "112214", "112412", "122114", "122411", "142112", "142211", "241211", "221114",
    "413111", "241112", "134111", "111242", "121142", "121241", "114212", "124112", "124211", "411212", "421112",
    "421211", "212141", "214121", "412121", "111143", "111341", "131141", "114113", "114311", "411113", "411311",
    "113141", "114131", "311141", "411131", "211412", "211214", "211232", "2331112"};

// Of the alphabet and of the star: a 3 is a wide bar or space.
constexpr std::array<std::string_view, 44> kBars39{
    "111331311", "311311113", "113311113", "313311111", "111331113", "311331111", "113331111", "111311313", "311311311",
    "113311311", "311113113", "113113113", "313113111", "111133113", "311133111", "113133111", "111113313", "311113311",
    "113113311", "111133311", "311111133", "113111133", "313111131", "111131133", "311131131", "113131131", "111111333",
    "311111331", "113111331", "111131331", "331111113", "133111113", "333111111", "131131113", "331131111", "133131111",
    "131111313", "331111311", "133111311", "131313111", "131311131", "131113131", "111313131", "131131311"};

// Where the font has it: value 0 to 94 at 32 to 126, 95 and on at 195 and on.
std::optional<std::string_view> Pattern128(int character) {
  const int value = character >= 195 ? character - 100 : character > 126 ? -1 : character - 32;
  if (value < 0 || value >= static_cast<int>(kBars128.size())) return std::nullopt;
  return kBars128[static_cast<std::size_t>(value)];
}

std::optional<std::string_view> Pattern39(int character) {
  if (character == '*') return kBars39.back();
  const std::size_t value =
      character < 0 || character > 127 ? std::string_view::npos : kAlphabet.find(static_cast<char>(character));
  if (value == std::string_view::npos) return std::nullopt;
  return kBars39[value];
}

}  // namespace

std::string_view SymbologyName(Symbology symbology) {
  return kNames[static_cast<std::size_t>(symbology)];
}

std::optional<Symbology> FindSymbology(std::string_view name) {
  const auto found = std::ranges::find(kNames, name);
  if (found == kNames.end()) return std::nullopt;
  return static_cast<Symbology>(found - kNames.begin());
}

Result<FontString> Code39(std::string_view text, bool withCheckSum) {
  for (const Letter& letter : LettersOf(text))
    if (letter.bytes.size() != 1 || kAlphabet.find(letter.bytes.front()) == std::string_view::npos)
      return BadCharacter(letter.bytes);
  if (text.empty()) return FontString();
  FontString font{'*'};
  font.insert(font.end(), text.begin(), text.end());
  if (withCheckSum) font.push_back(CheckOf39(text));
  font.push_back('*');
  return font;
}

Result<FontString> Code128(std::string_view text) {
  std::vector<Letter> letters = LettersOf(text);
  for (const Letter& letter : letters)
    if (letter.code > 127) return BadCharacter(letter.bytes);
  return Code128Writer(std::move(letters)).Write();
}

FontString ReportCode128(std::string_view text) {
  return Code128Writer(LettersOf(text)).Write();
}

Result<FontString> EncodeBarcode(Symbology symbology, std::string_view text) {
  switch (symbology) {
    case Symbology::NotUsing:
      return FontString();
    case Symbology::Code128:
      return Code128(text);
    case Symbology::Code39:
    case Symbology::Code39Check:
      break;
  }
  return Code39(text, symbology == Symbology::Code39Check);
}

std::optional<Bars> BarsOf(Symbology symbology, const FontString& font) {
  const bool is128 = symbology == Symbology::Code128;
  Bars bars;
  for (const int character : font) {
    const auto pattern = is128 ? Pattern128(character) : Pattern39(character);
    if (!pattern) return std::nullopt;
    if (!is128 && !bars.widths.empty()) bars.widths.push_back(1);  // between two characters
    for (const char width : *pattern) bars.widths.push_back(static_cast<std::uint8_t>(width - '0'));
  }
  for (const std::uint8_t width : bars.widths) bars.modules += width;
  return bars;
}

std::string ReadBackOf(Symbology symbology, std::string_view text) {
  std::string read(text);
  if (symbology == Symbology::Code39Check) read += CheckOf39(text);
  return read;
}

}  // namespace vellumark
