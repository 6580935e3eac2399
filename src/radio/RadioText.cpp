#include "radio/RadioText.h"

#include "cat/Framing.h"

namespace tolvane::radio {

namespace {
constexpr ModeInfo kModes[] = {
    {'1', "LSB", 0},    {'2', "USB", 1},     {'3', "CW-U", 2},   {'4', "FM", 3},     {'5', "AM", 4},
    {'6', "RTTY-L", 5}, {'7', "CW-L", 6},    {'8', "DATA-L", 7}, {'9', "RTTY-U", 8}, {'A', "DATA-FM", 9},
    {'B', "FM-N", 10},  {'C', "DATA-U", 11}, {'D', "AM-N", 12},  {'E', "PSK", 13},
};
constexpr char kCodes[] = "123456789ABCDEF";
}  // namespace

const ModeInfo* modeForCode(char code) {
  for (const auto& m : kModes)
    if (m.code == code) return &m;
  return nullptr;
}

char modeCodeForIndex(int index) {
  if (index < 0 || index > 14) return 0;
  return kCodes[index];
}

FrequencyParts splitFrequency(std::string_view d) {
  FrequencyParts f;
  f.mhz = std::to_string(cat::decimalValue(d.substr(0, 3)));
  f.khz = std::string(d.substr(3, 3));
  f.hz = std::string(d.substr(6, 3));
  return f;
}

std::string dottedFrequency(const FrequencyParts& f) { return f.mhz + "." + f.khz + "." + f.hz; }

std::string spokenFrequency(const FrequencyParts& f) {
  std::string t = "." + f.khz;
  std::string hz = f.hz;
  while (!hz.empty() && hz.back() == '0') hz.pop_back();
  if (!hz.empty()) t += "." + hz;
  std::string out = f.mhz;
  for (std::size_t i = 0; i < t.size(); ++i) {
    if (i > 0) out += ' ';
    if (t[i] == '.')
      out += " dot ";
    else
      out += t[i];
  }
  return out;
}

std::string removeAll(std::string_view text, std::string_view what) {
  std::string out;
  out.reserve(text.size());
  std::size_t pos = 0;
  while (true) {
    std::size_t hit = text.find(what, pos);
    if (hit == std::string_view::npos) break;
    out.append(text.substr(pos, hit - pos));
    pos = hit + what.size();
  }
  out.append(text.substr(pos));
  return out;
}

}  // namespace tolvane::radio
