// HTTP requests through Qt Network (built into the network module only).
#pragma once

#include <QObject>
#include <functional>
#include <future>

#include "platform/Platform.h"

class QNetworkAccessManager;
class QNetworkReply;

namespace tolvane::desktop {

class QtHttpClient : public QObject, public platform::HttpClient {
  Q_OBJECT
 public:
  explicit QtHttpClient(QObject* parent = nullptr);
  ~QtHttpClient() override;
  void send(const platform::HttpRequest& request, std::function<void(const platform::HttpResponse&)> done) override;
  // The first https request of a run loads the TLS back end (a plug-in, the
  // OpenSSL libraries and their configuration): tens of milliseconds that the
  // first fetch would spend on the window's thread. This starts loading it on
  // a worker thread; a request sent before that is done waits for it inside
  // Qt, as it would have anyway.
  void loadTlsInBackground();

 private:
  static void deliver(QNetworkReply* reply, const std::function<void(const platform::HttpResponse&)>& done);

  QNetworkAccessManager* nam_;
  std::future<void> tlsLoaded_;
};

}  // namespace tolvane::desktop
