// The rigctld protocol's lines: one command per short letter or "\long_name",
// its arguments separated by blanks, one or more commands to a line. A read
// answers its values one to a line; a write, or a failed read, answers
// "RPRT n" with 0 for success or a negative error code.
#include "share/RigctlSession.h"

#include <vector>

namespace tolvane::share {

namespace {

bool blank(char c) { return c == ' ' || c == '\t' || c == '\r'; }

// Stands for a line that was too long, or arrived while too much waited.
constexpr char kDiscarded = '\x01';

std::string report(int code) { return "RPRT " + std::to_string(code) + "\n"; }

// The record separator a leading punctuation character asks for; 0 for none.
char separatorFor(char c) {
  switch (c) {
    case '+':
      return '\n';
    case ';':
    case '|':
    case ',':
      return c;
    default:
      return 0;
  }
}

void format(const RigctlCommand& c, const RigctlResult& r, char separator, std::string_view echo, std::string& out) {
  if (!separator) {
    if (!r.block.empty())
      out += r.block;
    else if (r.code != 0 || r.values.empty())
      out += report(r.code);
    else
      for (const std::string& v : r.values) out += v + "\n";
    return;
  }
  out += std::string(c.name) + ":" + std::string(echo) + separator;
  if (r.code == 0) {
    if (!r.block.empty()) {
      for (char ch : r.block) out += ch == '\n' ? separator : ch;
    } else {
      for (std::size_t i = 0; i < r.values.size(); ++i) {
        const std::string_view name = i < c.values.size() ? c.values[i] : std::string_view("Value");
        out += std::string(name) + ": " + r.values[i] + separator;
      }
    }
  }
  out += "RPRT " + std::to_string(r.code) + "\n";
}

}  // namespace

bool isHttpRequestLine(std::string_view line) {
  while (!line.empty() && (line.back() == '\r' || line.back() == ' ')) line.remove_suffix(1);
  const std::size_t sp = line.find(' ');
  if (sp == std::string_view::npos || sp == 0) return false;
  for (char c : line.substr(0, sp))
    if (c < 'A' || c > 'Z') return false;
  const std::size_t last = line.rfind(' ');
  return last > sp && line.substr(last + 1, 5) == "HTTP/";
}

RigctlSession::RigctlSession(SharedRig& rig, RigctlOptions options) : rig_(rig), options_(std::move(options)) {}

std::string RigctlSession::receive(std::string_view bytes) {
  std::string out;
  while (!bytes.empty() && !finished_) {
    const std::size_t end = bytes.find('\n');
    const std::string_view part = bytes.substr(0, end);
    // Complete lines stay here only while a read waits; the rest is the
    // line still waiting for its end.
    const std::size_t lineStart = inbox_.rfind('\n') == std::string::npos ? 0 : inbox_.rfind('\n') + 1;
    if (!discarding_ &&
        (inbox_.size() - lineStart + part.size() > kMaxLine || inbox_.size() + part.size() >= kMaxHeld)) {
      inbox_.resize(lineStart);
      discarding_ = true;
    }
    if (!discarding_) inbox_.append(part);
    if (end == std::string_view::npos) break;
    bytes.remove_prefix(end + 1);
    if (discarding_) {
      // The thrown-away line's end: one error for all of it, in its turn.
      discarding_ = false;
      inbox_ += kDiscarded;
    }
    inbox_ += '\n';
    // While a read waits, what follows waits too (resume() runs it).
    if (!waiting()) out += pump();
  }
  return out;
}

std::string RigctlSession::resume() { return finished_ ? std::string() : pump(); }

std::string RigctlSession::pump() {
  std::string out;
  while (!finished_) {
    const std::size_t end = inbox_.find('\n');
    if (end == std::string::npos) break;
    const std::string text = inbox_.substr(0, end);
    if (firstLine_) {
      firstLine_ = false;
      if (isHttpRequestLine(text)) {
        // A web page's request (a browser or a rebinding attack): nothing of
        // it is acted on and the connection closes.
        inbox_.clear();
        finished_ = true;
        return out;
      }
    }
    if (text.size() == 1 && text[0] == kDiscarded) {
      out += report(kRigctlInvalidParameter);
    } else if (!line(text, out)) {
      break;
    }
    inbox_.erase(0, end + 1);
    at_ = 0;
  }
  return out;
}

bool RigctlSession::line(std::string_view text, std::string& out) {
  std::size_t i = at_;
  std::vector<std::string_view> args;
  while (true) {
    while (i < text.size() && blank(text[i])) ++i;
    if (i >= text.size()) return true;
    const std::size_t commandStart = i;
    char separator = separatorFor(text[i]);
    if (separator) ++i;
    const RigctlCommand* c = nullptr;
    if (i < text.size() && text[i] == '\\') {
      std::size_t j = i + 1;
      while (j < text.size() && !blank(text[j])) ++j;
      c = findRigctlCommand(0, text.substr(i + 1, j - i - 1));
      i = j;
    } else if (i < text.size()) {
      c = findRigctlCommand(text[i], {});
      ++i;
    }
    if (!c) {
      // The rest of the line cannot be read without knowing this command.
      out += report(kRigctlNotImplemented);
      return true;
    }
    const std::size_t argsStart = i;
    args.clear();
    // A client that works with VFO names names the side first ("f VFOB").
    char side = 0;
    if (c->takesSide) {
      std::size_t k = i;
      while (k < text.size() && blank(text[k])) ++k;
      std::size_t j = k;
      while (j < text.size() && !blank(text[j])) ++j;
      if (j > k) {
        const char named = rigctlSideNamed(text.substr(k, j - k), rig_.state());
        if (named) {
          side = named;
          i = j;
        }
      }
    }
    for (int n = 0; n < c->arguments; ++n) {
      while (i < text.size() && blank(text[i])) ++i;
      std::size_t j = i;
      while (j < text.size() && !blank(text[j])) ++j;
      if (j == i) {
        out += report(kRigctlInvalidParameter);
        return true;
      }
      args.push_back(text.substr(i, j - i));
      i = j;
    }
    const bool waited = waiting() && rig_.nowMs() - waitingSince_ >= kReadingWaitMs;
    const RigctlResult r = runRigctlCommand(rig_, options_, state_, *c, side, args, waited);
    if (r.wait) {
      if (!waiting()) waitingSince_ = rig_.nowMs();
      at_ = commandStart;
      return false;
    }
    waitingSince_ = -1;
    if (r.quit) {
      finished_ = true;
      return false;
    }
    std::string_view echo = text.substr(argsStart, i - argsStart);
    format(*c, r, separator, echo, out);
  }
}

std::string rigctlAnswer(SharedRig& rig, std::string_view line, const RigctlOptions& options) {
  RigctlSession session(rig, options);
  std::string text(line);
  text += '\n';
  return session.receive(text);
}

}  // namespace tolvane::share
