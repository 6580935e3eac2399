// The Connection page's view of rig sharing: each server's state and the
// programs connected now, with the time of their last command.
#pragma once

#include <QGroupBox>
#include <vector>

class QLabel;
class QTreeWidget;
class QTimer;

namespace tolvane::desktop {

class ShareServerState;

class SharingPanel : public QGroupBox {
  Q_OBJECT
 public:
  SharingPanel(std::vector<ShareServerState*> servers, QWidget* parent = nullptr);
  // Shows the servers' state now (otherwise at most four times a second).
  void refresh();
  QString statusText(int server) const;
  int clientRows() const;

 private:
  std::vector<ShareServerState*> servers_;
  std::vector<QLabel*> states_;
  QTreeWidget* clients_;
  QTimer* pending_;
};

}  // namespace tolvane::desktop
