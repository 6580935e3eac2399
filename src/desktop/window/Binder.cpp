#include "desktop/window/Binder.h"

#include <QAbstractListModel>
#include <QAccessible>
#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QGroupBox>
#include <QHeaderView>
#include <QIcon>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QPainter>
#include <QPlainTextEdit>
#include <QPointer>
#include <QProgressBar>
#include <QPushButton>
#include <QSlider>
#include <QStyleOptionComboBox>
#include <QTabWidget>
#include <QtMath>

#include "desktop/window/TableView.h"

namespace tolvane::desktop {

namespace {

QString q(const std::string& s) { return QString::fromStdString(s); }

QIcon statusIcon(const std::string& image) {
  if (image.empty()) return {};
  static QIcon available, partial, unavailable, reported;
  const bool isPartial = image == ui::kStatusPartiallyAvailable;
  const bool isUnavailable = image == ui::kStatusUnavailable;
  const bool isReported = image == ui::kStatusReported;
  QIcon& icon = isReported ? reported : isPartial ? partial : isUnavailable ? unavailable : available;
  if (icon.isNull()) {
    QPixmap pm(12, 12);
    pm.fill(Qt::transparent);
    QPainter p(&pm);
    p.setRenderHint(QPainter::Antialiasing);
    p.setPen(Qt::NoPen);
    // A value reported by the radio is drawn as a hollow red ring, an
    // unavailable port as a filled red dot.
    if (isReported) {
      p.setPen(QPen(QColor(0xC0, 0x26, 0x1F), 2));
      p.setBrush(Qt::NoBrush);
    } else {
      p.setBrush(isPartial       ? QColor(0xE3, 0xA0, 0x08)
                 : isUnavailable ? QColor(0xC6, 0x28, 0x28)
                                 : QColor(0x1E, 0x8E, 0x3E));
    }
    p.drawEllipse(1, 1, 10, 10);
    icon = QIcon(pm);
  }
  return icon;
}

// A loudspeaker, with sound waves or a cross for muted, drawn in the
// palette's button text colour so it reads on light and dark themes alike.
// Drawn, not looked up in an icon theme: the theme search costs tens of
// milliseconds at start-up and finds nothing on many desktops.
QIcon speakerIcon(bool muted) {
  QIcon icon;
  const QColor ink = QApplication::palette().color(QPalette::ButtonText);
  for (int size : {16, 24, 32}) {
    QPixmap pm(size, size);
    pm.fill(Qt::transparent);
    QPainter p(&pm);
    p.setRenderHint(QPainter::Antialiasing);
    p.scale(size / 16.0, size / 16.0);
    p.setPen(Qt::NoPen);
    p.setBrush(ink);
    const QPointF body[] = {{1.5, 6}, {4.5, 6}, {8, 2.5}, {8, 13.5}, {4.5, 10}, {1.5, 10}};
    p.drawPolygon(body, 6);
    QPen pen(ink, 1.4, Qt::SolidLine, Qt::RoundCap);
    p.setPen(pen);
    p.setBrush(Qt::NoBrush);
    if (muted) {
      p.drawLine(QPointF(10, 5.5), QPointF(15, 10.5));
      p.drawLine(QPointF(15, 5.5), QPointF(10, 10.5));
    } else {
      p.drawArc(QRectF(6.5, 5, 5, 6), -60 * 16, 120 * 16);
      p.drawArc(QRectF(6, 2.5, 9, 11), -60 * 16, 120 * 16);
    }
    p.end();
    icon.addPixmap(pm);
  }
  return icon;
}

QIcon buttonImage(const std::string& image) {
  if (image.empty()) return {};
  const bool muted = image.find("Mute") != std::string::npos || image.find("Off") != std::string::npos;
  static const QIcon on = speakerIcon(false), off = speakerIcon(true);
  return muted ? off : on;
}

// The entries of a pop-up as its combo box shows them. The box reads titles,
// status images and heading flags straight from the control, one entry at a
// time, so lists of thousands of values (made by a rule until read whole)
// cost no copy and no item each.
class EntryListModel : public QAbstractListModel {
 public:
  using QAbstractListModel::QAbstractListModel;

  bool shows(const ui::Control& c) const { return control_ == &c && version_ == c.entriesVersion(); }
  void show(const ui::Control& c) {
    beginResetModel();
    control_ = &c;
    version_ = c.entriesVersion();
    count_ = static_cast<int>(c.entryCount());
    endResetModel();
  }

  int rowCount(const QModelIndex& parent) const override { return parent.isValid() ? 0 : count_; }
  QVariant data(const QModelIndex& index, int role) const override {
    if (!index.isValid() || !inList(index.row())) return {};
    const ui::Entry e = control_->entry(static_cast<std::size_t>(index.row()));
    switch (role) {
      case Qt::DisplayRole:
      case Qt::EditRole:
      case Qt::AccessibleTextRole:
        return q(e.title);
      case Qt::DecorationRole:
        return e.image.empty() ? QVariant() : QVariant(statusIcon(e.image));
      case Qt::ToolTipRole:
      case Qt::AccessibleDescriptionRole:
        // A marked entry says in words what its colour shows.
        if (e.image == ui::kStatusUnavailable) return QStringLiteral("You may not open this port");
        if (e.image == ui::kStatusReported)
          return QStringLiteral("Reported by the radio; not one of the listed values");
        if (e.image == ui::kStatusPartiallyAvailable && role == Qt::ToolTipRole)
          return QStringLiteral("The radio's factory value");
        return {};
      case Qt::UserRole + 1:
        return q(e.image);
      case Qt::UserRole + 2:
        return e.tag;
      default:
        return {};
    }
  }
  Qt::ItemFlags flags(const QModelIndex& index) const override {
    if (!index.isValid() || !inList(index.row())) return Qt::NoItemFlags;
    if (control_->entry(static_cast<std::size_t>(index.row())).heading) return Qt::NoItemFlags;
    return Qt::ItemIsEnabled | Qt::ItemIsSelectable;
  }

 private:
  bool inList(int row) const { return row < count_ && static_cast<std::size_t>(row) < control_->entryCount(); }

  const ui::Control* control_ = nullptr;
  unsigned version_ = 0;
  int count_ = 0;  // as at the last reset: the view's rows change only with a reset
};

// A pop-up sized by its minimum contents length and room for an entry's
// status image, whatever its entries: the size the toolkit gives a box told
// to adjust to that length with an icon. Telling a box so makes it build its
// list's pop-up window at once, a list view and its scrollers for every
// pop-up; this box builds it only when it first opens.
class PopUpBox : public QComboBox {
 public:
  using QComboBox::QComboBox;

  QSize sizeHint() const override {
    const QFontMetrics& fm = fontMetrics();
    QSize size(-1, -1);
    if (minimumContentsLength() > 0)
      size.setWidth(minimumContentsLength() * fm.horizontalAdvance(QLatin1Char('X')) + iconSize().width() + 4);
    if (!placeholderText().isEmpty()) size.setWidth(std::max(size.width(), fm.boundingRect(placeholderText()).width()));
    size.setHeight(std::max(std::max(qCeil(QFontMetricsF(fm).height()), 14) + 2, iconSize().height() + 2));
    QStyleOptionComboBox option;
    initStyleOption(&option);
    return style()->sizeFromContents(QStyle::CT_ComboBox, &option, size, this);
  }
  QSize minimumSizeHint() const override { return sizeHint(); }

  // A long list (the radio's numeric values, thousands of them) is laid out
  // by its first entry's size instead of asking every entry for its own:
  // its entries are values of one form, and opening it stays inside a frame.
  void showPopup() override {
    if (auto* list = qobject_cast<QListView*>(view())) list->setUniformItemSizes(count() > kLongList);
    QComboBox::showPopup();
  }

 private:
  static constexpr int kLongList = 200;
};

void notifyAccessible(QWidget* w, QAccessible::Event event) {
  if (!QAccessible::isActive()) return;
  QAccessibleEvent e(w, event);
  QAccessible::updateAccessibility(&e);
}

}  // namespace

QString Binder::bezelColour(ui::Bezel bezel) {
  switch (bezel) {
    case ui::Bezel::Blue:
      return QStringLiteral("#1f66c9");
    case ui::Bezel::Green:
      return QStringLiteral("#1b7f37");
    case ui::Bezel::Orange:
      return QStringLiteral("#b05400");
    case ui::Bezel::Red:
      return QStringLiteral("#c0261f");
    case ui::Bezel::Purple:
      return QStringLiteral("#7440b0");
    case ui::Bezel::Pink:
      return QStringLiteral("#b8306e");
    case ui::Bezel::Brown:
      return QStringLiteral("#7a4a26");
    case ui::Bezel::DarkGray:
      return QStringLiteral("#555555");
    case ui::Bezel::None:
      break;
  }
  return {};
}

Binder::Binder(ui::Window& model, QObject* parent) : QObject(parent), model_(model) {
  announceFocusFirst();
  for (const auto& c : model_.controls()) create(*c);
  for (const auto& c : model_.controls()) repaint(*c);
}

bool Binder::deferred(const ui::Control& c) {
  // Only the page the program starts on is made with the binder, so the
  // first frame waits for nothing else. Controls on the other pages, and on
  // the pages of a tab view inside a page (the settings pages, many and
  // rarely all seen), are made when first asked for.
  if (!c.tabView() || c.kind() == ui::Kind::MenuItem) return false;
  return c.tabView()->tabView() || c.page() != kStartPage;
}

bool Binder::hasWidget(const std::string& outlet) const {
  auto it = widgets_.find(outlet);
  return it != widgets_.end() && it->second;
}

Binder::~Binder() {
  for (const auto& c : model_.controls()) c->setObserver(nullptr);
  for (auto& [outlet, w] : widgets_)
    if (w && !w->parentWidget()) delete w;
}

QWidget* Binder::widget(const std::string& outlet) const {
  auto it = widgets_.find(outlet);
  if (it != widgets_.end()) return it->second;
  ui::Control* c = model_.find(outlet);
  if (!c || !deferred(*c)) return nullptr;
  // First asked for: made now and painted from the control as it stands.
  auto* self = const_cast<Binder*>(this);
  QWidget* w = self->makeWidget(*c);
  if (w) self->repaint(*c);
  return w;
}

QWidget* Binder::existing(const std::string& outlet) const {
  auto it = widgets_.find(outlet);
  return it == widgets_.end() ? nullptr : it->second;
}

QAction* Binder::action(const std::string& outlet) const {
  auto it = actions_.find(outlet);
  return it == actions_.end() ? nullptr : it->second;
}

void Binder::create(ui::Control& c) {
  if (!deferred(c)) makeWidget(c);
  c.setObserver([this](const ui::Control& changed) { repaint(changed); });
}

QWidget* Binder::makeWidget(ui::Control& c) {
  ui::Control* ctl = &c;
  QWidget* w = nullptr;
  switch (c.kind()) {
    case ui::Kind::Button: {
      if (c.displayOnly()) {
        // Shows a value and does nothing when pressed: a label, which
        // assistive technologies read as text rather than offer as a button.
        auto* label = new QLabel;
        label->setAlignment(Qt::AlignCenter);
        label->setMargin(4);
        label->setTextInteractionFlags(Qt::TextSelectableByKeyboard);
        label->setFocusPolicy(Qt::TabFocus);
        w = label;
        break;
      }
      const bool isCheckBox = c.outlet().find("CheckBox") != std::string::npos;
      QAbstractButton* b =
          isCheckBox ? static_cast<QAbstractButton*>(new QCheckBox) : static_cast<QAbstractButton*>(new QPushButton);
      if (auto* pb = qobject_cast<QPushButton*>(b)) {
        pb->setAutoDefault(false);
        // A lit toggle is checked, so its state is read out, not only seen.
        pb->setCheckable(c.isToggle());
      }
      // A checkable button is pressed by a click, Space or an assistive
      // technology's "Toggle" (which toggles without clicking): all of them
      // toggle it, so that is the gesture taken. Afterwards the button shows
      // the model's state again, not its own toggle.
      const auto press = [this, ctl] {
        if (painting_) return;
        ctl->click();
        repaint(*ctl);
      };
      if (b->isCheckable())
        connect(b, &QAbstractButton::toggled, this, press);
      else
        connect(b, &QAbstractButton::clicked, this, press);
      w = b;
      break;
    }
    case ui::Kind::PopUp: {
      auto* box = new PopUpBox;
      box->setModel(new EntryListModel(box));
      box->setMinimumContentsLength(8);
      box->setMaxVisibleItems(20);
      connect(box, &QComboBox::activated, this, [this, ctl](int index) {
        if (painting_) return;
        ctl->choose(index);
        repaint(*ctl);
      });
      w = box;
      break;
    }
    case ui::Kind::Slider: {
      auto* s = new QSlider(Qt::Horizontal);
      s->setMinimumWidth(160);
      // Dragging fires once, on release; keys, clicks on the groove and the
      // wheel fire after each step. Program changes use setValue, which
      // raises neither signal.
      connect(s, &QSlider::sliderReleased, this, [this, ctl, s] {
        if (!painting_) ctl->slide(s->value());
      });
      connect(s, &QSlider::actionTriggered, this, [this, ctl, s](int) {
        if (painting_ || s->isSliderDown()) return;
        const int target = s->sliderPosition();  // the value is set after this signal
        ctl->slide(target);
      });
      w = s;
      break;
    }
    case ui::Kind::TextField: {
      auto* e = new QLineEdit;
      // Any text the operator puts in counts, typed or set through an
      // assistive technology (dictation, braille input); the program's own
      // changes are dropped by the guard.
      connect(e, &QLineEdit::textChanged, this, [this, ctl](const QString& t) {
        if (!painting_) ctl->type(t.toStdString());
      });
      connect(e, &QLineEdit::returnPressed, this, [this, ctl] {
        if (!painting_) ctl->click();
      });
      w = e;
      break;
    }
    case ui::Kind::TextView: {
      auto* t = new QPlainTextEdit;
      t->setReadOnly(true);
      t->setTextInteractionFlags(Qt::TextSelectableByKeyboard | Qt::TextSelectableByMouse);
      t->setTabChangesFocus(true);
      w = t;
      break;
    }
    case ui::Kind::LevelIndicator: {
      auto* p = new QProgressBar;
      p->setTextVisible(false);
      p->setMinimumWidth(160);
      w = p;
      break;
    }
    case ui::Kind::Box:
      w = new QGroupBox;
      break;
    case ui::Kind::TabView: {
      auto* tabs = new QTabWidget;
      connect(tabs, &QTabWidget::currentChanged, this, [this, ctl](int index) {
        if (painting_ || index < 0 || index == ctl->selectedIndex()) return;
        ctl->choose(index);
      });
      w = tabs;
      break;
    }
    case ui::Kind::Table: {
      auto* view = new TableView(c);
      // Tab leaves a table for the next control; the arrow keys walk its rows.
      view->setTabKeyNavigation(false);
      view->setFocusPolicy(Qt::StrongFocus);
      w = view;
      break;
    }
    case ui::Kind::Label:
      w = new QLabel;
      break;
    case ui::Kind::MenuItem: {
      auto* a = new QAction(this);
      a->setCheckable(true);
      connect(a, &QAction::triggered, this, [this, ctl] {
        if (painting_) return;
        ctl->click();
        repaint(*ctl);
      });
      actions_[c.outlet()] = a;
      break;
    }
  }
  if (w) {
    w->setObjectName(q(c.outlet()));
    presentAccessibly(c, w);
    widgets_[c.outlet()] = w;
  }
  return w;
}

void Binder::repaintAll() {
  for (const auto& c : model_.controls()) repaint(*c);
}

void Binder::repaint(const ui::Control& c) {
  const bool outer = painting_;
  painting_ = true;
  if (QAction* a = action(c.outlet())) {
    a->setText(q(c.title()));
    a->setChecked(c.state() != 0);
    a->setEnabled(c.enabled());
    a->setVisible(c.visible());
  } else if (QWidget* w = existing(c.outlet())) {
    paintWidget(c, w);
  }
  painting_ = outer;
  if (hook_) hook_(c);
}

void Binder::paintWidget(const ui::Control& c, QWidget* w) {
  // A disabled box keeps the controls inside it as they are and greys its title only.
  if (c.kind() != ui::Kind::Box && w->isEnabled() != c.enabled()) w->setEnabled(c.enabled());
  // Showing a widget that has no parent yet would open it as its own window.
  if (!c.visible() || w->parentWidget()) w->setVisible(c.visible());

  switch (c.kind()) {
    case ui::Kind::Button: {
      if (auto* label = qobject_cast<QLabel*>(w)) {
        const QString colour = bezelColour(c.bezel());
        label->setText(q(c.title()));  // its words are its accessible name
        label->setStyleSheet(
            colour.isEmpty()
                ? QString()
                : QStringLiteral("QLabel{background-color:%1;color:white;border-radius:4px;}").arg(colour));
        w->setProperty("bezel", static_cast<int>(c.bezel()));
        break;
      }
      auto* b = static_cast<QAbstractButton*>(w);
      const QString title = q(c.title());
      if (b->text() != title) {
        b->setText(title);
        // What the button shows (a frequency, a channel) is its description;
        // the name stays what the button is.
        b->setAccessibleDescription(title == b->accessibleName() ? QString() : title);
        notifyAccessible(b, QAccessible::DescriptionChanged);
      }
      if (auto* cb = qobject_cast<QCheckBox*>(b)) cb->setChecked(c.state() != 0);
      if (c.isToggle()) {
        const bool lit = c.bezel() != ui::Bezel::None;
        if (b->isChecked() != lit) {
          b->setChecked(lit);
          if (QAccessible::isActive()) {
            QAccessible::State changed;
            changed.checked = true;
            QAccessibleStateChangeEvent e(b, changed);
            QAccessible::updateAccessibility(&e);
          }
        }
      }
      b->setIcon(buttonImage(c.image()));
      const QString colour = bezelColour(c.bezel());
      const QString style = colour.isEmpty() ? QString()
                                             : QStringLiteral(
                                                   "QPushButton{background-color:%1;color:white;border:1px solid %1;"
                                                   "border-radius:4px;padding:4px 8px;}"
                                                   "QPushButton:pressed{background-color:%1;border:2px solid white;}"
                                                   "QPushButton:focus{border:2px solid palette(highlight);}"
                                                   "QPushButton:disabled{color:#dddddd;}")
                                                   .arg(colour);
      if (b->styleSheet() != style) b->setStyleSheet(style);
      w->setProperty("bezel", static_cast<int>(c.bezel()));
      break;
    }
    case ui::Kind::PopUp: {
      auto* box = static_cast<QComboBox*>(w);
      auto* entries = static_cast<EntryListModel*>(box->model());
      if (!entries->shows(c)) entries->show(c);
      if (box->currentIndex() != c.selectedIndex()) {
        box->setCurrentIndex(c.selectedIndex());
        if (QAccessible::isActive()) {
          QAccessibleValueChangeEvent e(box, box->currentText());
          QAccessible::updateAccessibility(&e);
        }
      }
      break;
    }
    case ui::Kind::Slider: {
      auto* s = static_cast<QSlider*>(w);
      if (s->minimum() != c.minValue() || s->maximum() != c.maxValue()) s->setRange(c.minValue(), c.maxValue());
      if (!s->isSliderDown() && s->value() != c.value()) s->setValue(c.value());
      s->setPageStep(std::max(1, (c.maxValue() - c.minValue()) / 16));
      s->setAccessibleDescription(QString::number(c.value()));
      break;
    }
    case ui::Kind::TextField: {
      auto* e = static_cast<QLineEdit*>(w);
      if (e->text() != q(c.text())) e->setText(q(c.text()));
      if (!c.title().empty()) e->setPlaceholderText(q(c.title()));
      break;
    }
    case ui::Kind::TextView: {
      auto* t = static_cast<QPlainTextEdit*>(w);
      if (t->toPlainText() != q(c.text())) t->setPlainText(q(c.text()));
      break;
    }
    case ui::Kind::LevelIndicator: {
      auto* p = static_cast<QProgressBar*>(w);
      if (p->minimum() != c.minValue() || p->maximum() != c.maxValue()) p->setRange(c.minValue(), c.maxValue());
      if (p->value() != c.value()) {
        p->setValue(c.value());  // QProgressBar reports the new value to assistive technologies
        p->setAccessibleDescription(QString::number(c.value()));
      }
      break;
    }
    case ui::Kind::Box: {
      auto* box = static_cast<QGroupBox*>(w);
      box->setTitle(q(c.title()));
      const QString style = c.enabled() ? QString() : QStringLiteral("QGroupBox::title{color:palette(mid);}");
      if (box->styleSheet() != style) box->setStyleSheet(style);
      box->setProperty("titleGreyed", !c.enabled());
      break;
    }
    case ui::Kind::TabView: {
      auto* tabs = static_cast<QTabWidget*>(w);
      const auto& entries = c.entries();
      for (int i = 0; i < static_cast<int>(entries.size()); ++i) {
        const QString title = q(entries[static_cast<std::size_t>(i)].title);
        if (i >= tabs->count()) {
          auto* page = new QWidget;
          page->setObjectName(q(c.outlet()) + QStringLiteral("Page%1").arg(i));
          tabs->addTab(page, title);
        } else if (tabs->tabText(i) != title) {
          tabs->setTabText(i, title);
        }
      }
      if (c.selectedIndex() >= 0 && tabs->currentIndex() != c.selectedIndex()) tabs->setCurrentIndex(c.selectedIndex());
      break;
    }
    case ui::Kind::Table:
      static_cast<TableView*>(w)->refresh();
      break;
    case ui::Kind::Label: {
      auto* label = static_cast<QLabel*>(w);
      label->setText(q(c.title()));
      if (const QString caption = label->property("caption").toString(); !caption.isEmpty()) setCaption(label, caption);
      // A coloured label (a band condition) shows its colour in bold text.
      const QString colour = bezelColour(c.bezel());
      label->setStyleSheet(colour.isEmpty() ? QString() : QStringLiteral("color: %1; font-weight: bold;").arg(colour));
      break;
    }
    case ui::Kind::MenuItem:
      break;
  }
}

}  // namespace tolvane::desktop
