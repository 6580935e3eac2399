#include "desktop/window/ContactDialog.h"

#include <QComboBox>
#include <QDateTimeEdit>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTimeZone>
#include <QVBoxLayout>

namespace tolvane::desktop {

namespace {

QString q(const std::string& text) { return QString::fromStdString(text); }
std::string s(const QLineEdit* field) { return field->text().trimmed().toStdString(); }

// The programmes a reference can belong to, as the form offers them and as the log stores them.
struct Programme {
  const char* shown;
  const char* sig;
};
constexpr Programme kProgrammes[] = {{"Park (POTA)", "POTA"}, {"Summit (SOTA)", "SOTA"}, {"None", ""}};

}  // namespace

ContactDialog::ContactDialog(const log::Contact& draft, const QString& title, QWidget* parent)
    : QDialog(parent), contact_(draft) {
  setWindowTitle(title);
  auto* form = new QFormLayout;
  const auto field = [&](const QString& label, QWidget* widget) {
    widget->setAccessibleName(QString(label).remove(QLatin1Char('&')));
    form->addRow(label + QStringLiteral(":"), widget);
  };
  call_ = new QLineEdit(q(draft.call));
  field(QStringLiteral("&Call"), call_);
  programme_ = new QComboBox;
  int chosen = 2;
  for (int i = 0; i < 3; ++i) {
    programme_->addItem(QString::fromLatin1(kProgrammes[i].shown));
    if (draft.sig == kProgrammes[i].sig) chosen = i;
  }
  programme_->setCurrentIndex(chosen);
  field(QStringLiteral("&Programme"), programme_);
  reference_ = new QLineEdit(q(draft.reference));
  reference_->setPlaceholderText(QStringLiteral("US-3844 or W7W/KG-001"));
  field(QStringLiteral("Park or &summit"), reference_);
  frequency_ = new QLineEdit(draft.frequencyHz > 0 ? q(log::megahertzText(draft.frequencyHz)) : QString());
  field(QStringLiteral("&Frequency (MHz)"), frequency_);
  band_ = new QLabel(q(draft.band.empty() ? log::adifBand(draft.frequencyHz) : draft.band));
  field(QStringLiteral("Band"), band_);
  connect(frequency_, &QLineEdit::textChanged, this, [this](const QString& text) {
    const auto hertz = log::hertzFromMegahertz(text.trimmed().toStdString());
    band_->setText(hertz ? q(log::adifBand(*hertz)) : QString());
  });
  mode_ = new QComboBox;
  mode_->setEditable(true);
  mode_->addItems({QStringLiteral("SSB"), QStringLiteral("CW"), QStringLiteral("FT8"), QStringLiteral("FT4"),
                   QStringLiteral("RTTY"), QStringLiteral("PSK31"), QStringLiteral("AM"), QStringLiteral("FM")});
  mode_->setCurrentText(q(log::shownMode(draft)));
  field(QStringLiteral("&Mode"), mode_);
  time_ = new QDateTimeEdit(QDateTime::fromSecsSinceEpoch(draft.utc, QTimeZone::utc()));
  time_->setTimeSpec(Qt::UTC);
  time_->setDisplayFormat(QStringLiteral("yyyy-MM-dd HH:mm:ss 'UTC'"));
  field(QStringLiteral("&Time"), time_);
  sent_ = new QLineEdit(q(draft.rstSent));
  field(QStringLiteral("RST s&ent"), sent_);
  received_ = new QLineEdit(q(draft.rstReceived));
  field(QStringLiteral("RST &received"), received_);
  ownCall_ = new QLineEdit(q(draft.ownCall));
  field(QStringLiteral("M&y call"), ownCall_);
  comment_ = new QLineEdit(q(draft.comment));
  field(QStringLiteral("C&omment"), comment_);

  problem_ = new QLabel;
  problem_->setWordWrap(true);
  problem_->setAccessibleName(QStringLiteral("Problem"));
  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Save | QDialogButtonBox::Cancel);
  connect(buttons, &QDialogButtonBox::accepted, this, &ContactDialog::save);
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
  auto* layout = new QVBoxLayout(this);
  layout->addLayout(form);
  layout->addWidget(problem_);
  layout->addWidget(buttons);
  // The call is what the operator most often types; a spot fills it already.
  (draft.call.empty() ? call_ : sent_)->setFocus();
}

QString ContactDialog::problem() const { return problem_->text(); }

bool ContactDialog::read() {
  log::Contact c = contact_;
  c.call = log::normalised(s(call_));
  if (c.call.empty()) {
    problem_->setText(QStringLiteral("Type the call sign of the station worked."));
    call_->setFocus();
    return false;
  }
  const auto hertz = log::hertzFromMegahertz(s(frequency_));
  if (!hertz || *hertz == 0) {
    problem_->setText(QStringLiteral("The frequency is not a number of megahertz (14.074)."));
    frequency_->setFocus();
    return false;
  }
  c.frequencyHz = *hertz;
  c.band = log::adifBand(c.frequencyHz);
  const log::LogMode mode = log::logModeFor(mode_->currentText().toStdString(), c.frequencyHz);
  if (mode.mode.empty()) {
    problem_->setText(QStringLiteral("Choose or type the mode."));
    mode_->setFocus();
    return false;
  }
  c.mode = mode.mode;
  c.submode = mode.submode;
  c.sig = kProgrammes[programme_->currentIndex()].sig;
  c.reference = log::normalised(s(reference_));
  if (c.reference.empty()) c.sig.clear();
  c.utc = time_->dateTime().toSecsSinceEpoch();
  c.rstSent = s(sent_);
  c.rstReceived = s(received_);
  c.ownCall = log::normalised(s(ownCall_));
  c.comment = s(comment_);
  contact_ = std::move(c);
  return true;
}

void ContactDialog::save() {
  if (read()) accept();
}

}  // namespace tolvane::desktop
