#include "desktop/window/SharingPanel.h"

#include <QFormLayout>
#include <QHeaderView>
#include <QLabel>
#include <QTimer>
#include <QTreeWidget>
#include <QVBoxLayout>

#include "desktop/servers/Sharing.h"

namespace tolvane::desktop {

SharingPanel::SharingPanel(std::vector<ShareServerState*> servers, QWidget* parent)
    : QGroupBox(QStringLiteral("Rig sharing"), parent), servers_(std::move(servers)) {
  auto* v = new QVBoxLayout(this);
  auto* form = new QFormLayout;
  for (ShareServerState* s : servers_) {
    auto* label = new QLabel;
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    form->addRow(s->name() + QStringLiteral(" server:"), label);
    states_.push_back(label);
  }
  v->addLayout(form);
  clients_ = new QTreeWidget;
  clients_->setRootIsDecorated(false);
  clients_->setHeaderLabels(
      {QStringLiteral("Program connected"), QStringLiteral("Server"), QStringLiteral("Last command")});
  clients_->header()->setSectionResizeMode(QHeaderView::ResizeToContents);
  clients_->setMinimumHeight(90);
  clients_->setAccessibleName(QStringLiteral("Programs connected"));
  v->addWidget(clients_);

  pending_ = new QTimer(this);
  pending_->setSingleShot(true);
  pending_->setInterval(250);
  connect(pending_, &QTimer::timeout, this, &SharingPanel::refresh);
  for (ShareServerState* s : servers_)
    connect(s, &ShareServerState::changed, this, [this] {
      if (!pending_->isActive()) pending_->start();
    });
  refresh();
}

void SharingPanel::refresh() {
  pending_->stop();
  clients_->clear();
  for (std::size_t i = 0; i < servers_.size(); ++i) {
    const ShareServerState* s = servers_[i];
    states_[i]->setText(s->status());
    for (const ShareClient& c : s->clients()) {
      const QString last =
          c.lastCommand.isValid() ? c.lastCommand.toString(QStringLiteral("HH:mm:ss")) : QStringLiteral("none yet");
      clients_->addTopLevelItem(new QTreeWidgetItem({c.address, s->name(), last}));
    }
  }
}

QString SharingPanel::statusText(int server) const { return states_.at(static_cast<std::size_t>(server))->text(); }

int SharingPanel::clientRows() const { return clients_->topLevelItemCount(); }

}  // namespace tolvane::desktop
