#include "desktop/servers/Sharing.h"

namespace tolvane::desktop {

void ShareServerState::update(QString status, bool listening, quint16 port, std::vector<ShareClient> clients) {
  status_ = std::move(status);
  listening_ = listening;
  port_ = port;
  clients_ = std::move(clients);
  emit changed();
}

}  // namespace tolvane::desktop
