// The pages built apart from the operating panel: the keyer and text
// messages, the radio's menu mirror (built when first shown) and the band
// conditions box.
#include <QComboBox>
#include <QFormLayout>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QScrollArea>
#include <QScrollBar>
#include <QTabBar>
#include <QTabWidget>
#include <QVBoxLayout>
#include <array>

#include "app/WindowLayout.h"
#include "desktop/window/MainWindow.h"
#include "menu/MenuTable.h"

namespace tolvane::desktop {

void MainWindow::buildMessagesPage(QWidget* page) {
  QWidget* content = scrollingContent(page);
  auto* v = new QVBoxLayout(content);

  // The fifteen memories: a row per mode, a button per memory showing its text,
  // and below each row the field and pop-up that write one.
  QGroupBox* stored = group(QStringLiteral("Memories in the radio"));
  auto* sg = new QGridLayout(stored);
  int row = 0;
  for (const auto& [mode, name] : {std::pair{"cw", "CW"}, std::pair{"rtty", "RTTY"}, std::pair{"psk", "PSK"}}) {
    sg->addWidget(new QLabel(QString::fromLatin1(name)), row, 0);
    int col = 1;
    for (const auto& o : range(std::string(mode) + "Memory", 1, 5, "Button")) {
      if (QWidget* b = take(o)) {
        b->setMinimumWidth(120);
        b->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
        sg->addWidget(b, row, col);
      }
      ++col;
    }
    ++row;
    const std::string field = std::string(mode) + "MemoryField";
    if (const ui::Control* c = binder_.model().find(field)) {
      if (QWidget* f = take(field)) {
        static_cast<QLineEdit*>(f)->setMaxLength(200);
        static_cast<QLineEdit*>(f)->setPlaceholderText(QStringLiteral("Up to 49 characters are stored"));
        sg->addWidget(labelFor(f, accessibleNameFor(*c) + QStringLiteral(":")), row, 1);
        sg->addWidget(f, row, 2, 1, 3);
      }
      if (QWidget* pop = take(std::string(mode) + "MemoryPopUpButton")) sg->addWidget(pop, row, 5);
    }
    ++row;
  }
  if (QWidget* w = take("readMessagesButton")) sg->addWidget(w, row, 1);
  v->addWidget(stored);

  if (auto* keyer = qobject_cast<QGroupBox*>(take("sendBox"))) {
    auto* kg = new QGridLayout(keyer);
    addButtons(kg, range("textMemory", 1, 5, "Button"), 5);
    if (QWidget* w = take("textMemoryField")) kg->addWidget(w, 1, 0, 1, 3);
    if (QWidget* w = take("sendTextMemoryButton")) kg->addWidget(w, 1, 3);
    if (QWidget* w = take("clearTextMemoryButton")) kg->addWidget(w, 1, 4);
    if (QWidget* w = take("sentTextMemoryField")) {
      w->setMinimumHeight(160);
      kg->addWidget(w, 2, 0, 1, 5);
    }
    v->addWidget(keyer);
  }
  placeRest(content, "mainTab", kPageMessages, v);
  v->addStretch();
}

void MainWindow::buildSettingsPage(QWidget* page) {
  auto* v = new QVBoxLayout(page);
  v->setContentsMargins(0, 0, 0, 0);
  auto* tabs = qobject_cast<QTabWidget*>(take("settingsTab"));
  if (!tabs) {
    buildGenericPage(page, "mainTab", kPageSettings);
    return;
  }
  v->addWidget(tabs);
  // Each page of the radio's menu makes its widgets when it is first shown,
  // so the window opens without them.
  for (int i = 0; i < tabs->count(); ++i) {
    QWidget* menuPage = tabs->widget(i);
    new FirstShow(tabs, i, [this, menuPage, i] { buildMenuPage(menuPage, i); });
  }
  placeRest(page, "mainTab", kPageSettings, v);
}

// One page of the radio's menu: the read button and a filter on top, then the
// items under their sub-group headings in a scrolling list; the heading of the
// sub-group at the top of the view stays pinned above the list.
void MainWindow::buildMenuPage(QWidget* page, int index) {
  pageTab_ = "settingsTab";
  pageIndex_ = index;
  const std::size_t firstStop = focusOrder_.size();
  auto* holder = new QWidget;
  auto* v = new QVBoxLayout(holder);
  v->setContentsMargins(6, 6, 6, 6);

  auto* top = new QHBoxLayout;
  auto* filter = new QLineEdit;
  filter->setObjectName(QStringLiteral("menuFilter%1").arg(index + 1));
  filter->setPlaceholderText(QStringLiteral("Filter by item code (01-02-03) or label"));
  filter->setClearButtonEnabled(true);
  filter->setAccessibleName(QStringLiteral("Filter menu items"));
  top->addWidget(labelFor(filter, QStringLiteral("&Filter:")));
  focusOrder_.push_back(filter);
  top->addWidget(filter, 1);
  if (QWidget* read = take("readMenuGroup" + std::to_string(index + 1) + "Button")) top->addWidget(read);
  v->addLayout(top);

  auto* pinned = new QLabel;
  pinned->setObjectName(QStringLiteral("menuPinnedHeading%1").arg(index + 1));
  QFont bold = pinned->font();
  bold.setBold(true);
  pinned->setFont(bold);
  v->addWidget(pinned);

  auto* scroll = new QScrollArea;
  scroll->setWidgetResizable(true);
  auto* list = new QWidget;
  auto* lv = new QVBoxLayout(list);
  auto* none = new QLabel(QStringLiteral("No menu item matches the filter."));
  none->setVisible(false);
  lv->addWidget(none);

  struct Row {
    const menu::MenuItem* item;
    std::array<QWidget*, 2> label;  // the item code and the label
    QWidget* field;
  };
  struct Section {
    const menu::MenuSubGroup* sub;
    QWidget* box;
    std::vector<Row> rows;
  };
  auto sections = std::make_shared<std::vector<Section>>();
  for (const menu::MenuSubGroup& sub : menu::menuSubGroups()) {
    const menu::MenuItem& first = menu::menuItems()[sub.first];
    if (first.page() != index) continue;
    Section section{&sub, new QWidget, {}};
    auto* sv = new QVBoxLayout(section.box);
    sv->setContentsMargins(0, 6, 0, 6);
    auto* heading = new QLabel(QString::fromStdString(sub.heading));
    heading->setFont(bold);
    sv->addWidget(heading);
    auto* grid = new QGridLayout;
    grid->setColumnStretch(2, 1);
    for (std::size_t k = sub.first; k < sub.first + sub.count; ++k) {
      const menu::MenuItem& item = menu::menuItems()[k];
      const std::string suffix = item.kind == menu::ValueKind::CallSign ? "Field" : "PopUp";
      QWidget* field = take("menu" + std::to_string(item.tag()) + suffix);
      if (!field) continue;
      auto* code = new QLabel(QStringLiteral("EX") + QString::fromStdString(item.code));
      code->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
      // Code, label and field side by side in one parent, so the field is
      // labelled by its label.
      QLabel* label = labelFor(field, QString::fromStdString(item.label) + QStringLiteral(":"));
      const int r = static_cast<int>(k - sub.first);
      grid->addWidget(code, r, 0);
      grid->addWidget(label, r, 1);
      grid->addWidget(field, r, 2, Qt::AlignLeft);
      section.rows.push_back(Row{&item, {code, label}, field});
    }
    sv->addLayout(grid);
    lv->addWidget(section.box);
    sections->push_back(std::move(section));
  }
  lv->addStretch();
  scroll->setWidget(list);
  v->addWidget(scroll, 1);

  // The heading of the sub-group whose items are at the top of the view.
  auto pin = [sections, pinned, scroll] {
    const int top = scroll->verticalScrollBar()->value();
    QString text;
    for (const Section& s : *sections) {
      if (!s.box->isVisibleTo(s.box->parentWidget())) continue;
      if (text.isEmpty() || s.box->y() <= top) text = QString::fromStdString(s.sub->heading);
      if (s.box->y() > top) break;
    }
    pinned->setText(text);
  };
  connect(scroll->verticalScrollBar(), &QScrollBar::valueChanged, pinned, pin);
  connect(filter, &QLineEdit::textChanged, list, [sections, none, pin](const QString& text) {
    const std::string f = text.toStdString();
    bool any = false;
    for (Section& s : *sections) {
      bool shown = false;
      for (Row& r : s.rows) {
        const bool match = menu::menuItemMatches(*r.item, f);
        for (QWidget* l : r.label) l->setVisible(match);
        r.field->setVisible(match);
        shown = shown || match;
      }
      s.box->setVisible(shown);
      any = any || shown;
    }
    none->setVisible(!any);
    pin();
  });

  auto* pageLayout = page->layout() ? static_cast<QBoxLayout*>(page->layout()) : new QVBoxLayout(page);
  pageLayout->setContentsMargins(0, 0, 0, 0);
  pageLayout->addWidget(holder);
  holder->show();
  quietPanes(holder);
  // Built after the window's Tab order was made: the page's controls go in
  // right after the tab bar that shows them.
  QWidget* previous = binder_.widgetAs<QTabWidget>("settingsTab")->tabBar();
  for (std::size_t i = firstStop; i < focusOrder_.size(); ++i) {
    QWidget::setTabOrder(previous, focusOrder_[i]);
    previous = focusOrder_[i];
  }
  pin();
  pageTab_ = "mainTab";
}

// The band conditions box: solar flux, the day and night conditions of the
// four band pairs, the 6 m band and the noise level, with its refresh button.
void MainWindow::buildBandConditions(QBoxLayout* into) {
  auto* box = qobject_cast<QGroupBox*>(take("bandBox"));
  if (!box) return;
  auto* grid = new QGridLayout(box);
  // Captions in the ordinary text colour: a pale grey would read as disabled
  // and fail contrast on light themes.
  auto caption = [](const QString& text) { return new QLabel(text); };
  auto place = [&](const char* outlet, int row, int column, const QString& name) {
    if (QWidget* w = take(outlet)) {
      if (auto* display = qobject_cast<QLabel*>(w)) setCaption(display, name);
      grid->addWidget(w, row, column);
    }
  };
  const QString pairs[] = {QStringLiteral("80-40 m"), QStringLiteral("30-20 m"), QStringLiteral("17-15 m"),
                           QStringLiteral("12-10 m")};
  for (int i = 0; i < 4; ++i) grid->addWidget(caption(pairs[i]), 0, i + 1);
  grid->addWidget(caption(QStringLiteral("Day")), 1, 0);
  grid->addWidget(caption(QStringLiteral("Night")), 2, 0);
  const char* day[] = {"day8040Field", "day3020Field", "day1715Field", "day1210Field"};
  const char* night[] = {"night8040Field", "night3020Field", "night1715Field", "night1210Field"};
  for (int i = 0; i < 4; ++i) {
    place(day[i], 1, i + 1, QStringLiteral("Day ") + pairs[i]);
    place(night[i], 2, i + 1, QStringLiteral("Night ") + pairs[i]);
  }
  grid->addWidget(caption(QStringLiteral("Solar flux")), 3, 0);
  place("solarFluxField", 3, 1, QStringLiteral("Solar flux"));
  grid->addWidget(caption(QStringLiteral("6 m")), 3, 2);
  place("magicBandField", 3, 3, QStringLiteral("6 m band"));
  grid->addWidget(caption(QStringLiteral("Noise")), 4, 0);
  place("signalNoiseField", 4, 1, QStringLiteral("Noise level"));
  if (QWidget* refresh = take("bandConditionsRefreshButton")) grid->addWidget(refresh, 4, 3, 1, 2);
  into->addWidget(box);
}

}  // namespace tolvane::desktop
