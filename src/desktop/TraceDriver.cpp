#include "desktop/TraceDriver.h"

#include <unistd.h>

#include <QSocketNotifier>
#include <cstdio>
#include <sstream>
#include <string>

#include "ui/Table.h"

namespace tolvane::desktop {

namespace {

// "click OUTLET", "click TABLE COLUMN ROW", "choose POPUP INDEX" and
// "menu TABLE ROW INDEX" (an entry of a row's context menu).
bool perform(ui::Window& model, const std::string& line) {
  std::istringstream words(line);
  std::string verb, outlet, column;
  int row = -1;
  if (!(words >> verb >> outlet)) return false;
  ui::Control* c = model.find(outlet);
  if (!c) return false;
  if (verb == "choose") {
    int index = -1;
    if (!(words >> index) || c->kind() != ui::Kind::PopUp || !c->enabled()) return false;
    if (index < 0 || index >= static_cast<int>(c->entries().size())) return false;
    c->choose(index);
    return true;
  }
  if (verb == "menu") {
    int index = -1;
    return c->kind() == ui::Kind::Table && (words >> row >> index) && ui::chooseInRowMenu(*c, row, index);
  }
  if (verb != "click") return false;
  if (!(words >> column >> row)) {
    if (c->kind() != ui::Kind::Button || !c->enabled()) return false;
    c->click();
    return true;
  }
  return c->kind() == ui::Kind::Table && ui::clickInCell(*c, column, row);
}

}  // namespace

void readGesturesFromStandardInput(ui::Window& model, QObject* context) {
  auto* notifier = new QSocketNotifier(STDIN_FILENO, QSocketNotifier::Read, context);
  auto* pending = new std::string;
  QObject::connect(notifier, &QObject::destroyed, [pending] { delete pending; });
  QObject::connect(notifier, &QSocketNotifier::activated, notifier, [&model, notifier, pending] {
    char buf[512];
    const ssize_t n = read(STDIN_FILENO, buf, sizeof buf);
    if (n <= 0) {
      notifier->setEnabled(false);  // the other end is closed
      return;
    }
    pending->append(buf, static_cast<std::size_t>(n));
    for (auto nl = pending->find('\n'); nl != std::string::npos; nl = pending->find('\n')) {
      const std::string line = pending->substr(0, nl);
      pending->erase(0, nl + 1);
      std::fprintf(stderr, "trace gesture %s %s\n", perform(model, line) ? "ok" : "failed", line.c_str());
    }
    if (pending->size() > 4096) pending->clear();
  });
}

}  // namespace tolvane::desktop
