#include "desktop/window/LogDesk.h"

#include <QItemSelectionModel>
#include <QTabWidget>
#include <QTableView>

#include "app/SerialPortDemoController.h"
#include "app/WindowLayout.h"
#include "desktop/window/Binder.h"
#include "desktop/window/MainWindow.h"

namespace tolvane::desktop {

LogDesk::LogDesk(MainWindow& window, Binder& binder, SerialPortDemoController& controller, platform::Files& files,
                 platform::Alerts& alerts, OpenStore open, QString path)
    : window_(window),
      binder_(binder),
      controller_(controller),
      files_(files),
      alerts_(alerts),
      open_(std::move(open)),
      path_(std::move(path)) {
  connect(&window, &MainWindow::logPageWanted, this, [this] { page(); });
  connect(&window, &MainWindow::logContactRequested, this, [this] { logContact(); });
  connect(&window, &MainWindow::exportAdifRequested, this, [this] { page()->exportAdif(); });
  connect(&window, &MainWindow::importAdifRequested, this, [this] { page()->importAdif(); });
  controller_.setLogContactHandler([this](const log::Contact& draft) { page()->logContact(draft); });
  // The spot lists mark what was worked today: the log opens with the first list shown.
  controller_.setWorkedSource(
      [this](std::int64_t now) { return openBook() ? book_->workedToday(now) : log::WorkedToday(); });
}

LogDesk::~LogDesk() {
  controller_.setLogContactHandler(nullptr);
  controller_.setWorkedSource(nullptr);
  // The page watches the log: it goes first.
  delete page_.data();
}

bool LogDesk::openBook() {
  if (book_) return openError_.empty();
  store_ = open_(path_);
  book_ = std::make_unique<log::LogBook>(*store_);
  if (!book_->open(openError_) && openError_.empty()) openError_ = "The log could not be read.";
  // A contact logged, edited, deleted or imported changes what was worked.
  book_->observe([this] { controller_.workedChanged(); });
  return openError_.empty();
}

LogPage* LogDesk::page() {
  if (page_) return page_;
  if (!openBook()) {
    platform::Alert alert;
    alert.message = "The log could not be opened.";
    alert.informativeText = openError_ + "\nContacts logged now cannot be saved.";
    alerts_.run(alert);
  }
  page_ = new LogPage(*book_, files_, alerts_);
  page_->setDraft([this] { return controller_.contactDraft(); });
  window_.placeLogPage(page_);
  return page_;
}

void LogDesk::logContact() {
  std::string table;
  int row = -1;
  // The spot chosen on the Spots page, when that page is the one shown (the
  // page is asked for its lists only then: asking would build it).
  auto* tabs = binder_.widgetAs<QTabWidget>("mainTab");
  auto* spots = tabs && tabs->currentIndex() == kPageSpots ? binder_.widgetAs<QTabWidget>("spotsTab") : nullptr;
  if (spots && spots->currentIndex() <= 1) {
    table = spots->currentIndex() == 0 ? "potaTable" : "sotaTable";
    if (auto* view = binder_.widgetAs<QTableView>(table); view && view->selectionModel())
      if (const QModelIndex current = view->selectionModel()->currentIndex(); current.isValid()) row = current.row();
  }
  page()->logContact(controller_.contactDraft(table, row));
}

}  // namespace tolvane::desktop
