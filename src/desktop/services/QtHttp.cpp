#include "desktop/services/QtHttp.h"

#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QSslConfiguration>
#include <QSslSocket>
#include <QUrl>

namespace tolvane::desktop {

QtHttpClient::QtHttpClient(QObject* parent) : QObject(parent), nam_(new QNetworkAccessManager(this)) {}

void QtHttpClient::loadTlsInBackground() {
#if QT_CONFIG(ssl)
  if (tlsLoaded_.valid()) return;
  tlsLoaded_ = std::async(std::launch::async, [] {
    if (QSslSocket::supportsSsl()) QSslConfiguration::defaultConfiguration();
  });
#endif
}

QtHttpClient::~QtHttpClient() {
  if (tlsLoaded_.valid()) tlsLoaded_.wait();
}

void QtHttpClient::send(const platform::HttpRequest& request, std::function<void(const platform::HttpResponse&)> done) {
  QNetworkRequest req(QUrl(QString::fromStdString(request.url)));
  for (const auto& [k, v] : request.headers)
    req.setRawHeader(QByteArray::fromStdString(k), QByteArray::fromStdString(v));
  req.setTransferTimeout(static_cast<int>(request.timeout.count()));
  req.setAttribute(QNetworkRequest::CacheLoadControlAttribute,
                   request.cache == platform::CachePolicy::ReloadIgnoringCache ? QNetworkRequest::AlwaysNetwork
                                                                               : QNetworkRequest::PreferCache);
  req.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::NoLessSafeRedirectPolicy);
  // Asked past any cache: the same two headers on every such request.
  if (request.cache == platform::CachePolicy::ReloadIgnoringCache) {
    req.setRawHeader("Cache-Control", "no-cache");
    req.setRawHeader("Pragma", "no-cache");
  }
  const QByteArray body = QByteArray::fromStdString(request.body);
  // GET and POST as such: a custom request would send "Content-Length: 0" with a GET.
  QNetworkReply* reply = request.method == "GET" ? nam_->get(req)
                         : request.method == "POST"
                             ? nam_->post(req, body)
                             : nam_->sendCustomRequest(req, QByteArray::fromStdString(request.method), body);
  connect(reply, &QNetworkReply::finished, this, [reply, done = std::move(done)] { deliver(reply, done); });
}

void QtHttpClient::deliver(QNetworkReply* reply, const std::function<void(const platform::HttpResponse&)>& done) {
  reply->deleteLater();
  platform::HttpResponse r;
  r.status = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
  r.reason = reply->attribute(QNetworkRequest::HttpReasonPhraseAttribute).toString().toStdString();
  r.body = reply->readAll().toStdString();
  // An HTTP error status is still an answer; only a missing answer is not ok.
  r.ok = reply->error() == QNetworkReply::NoError || r.status != 0;
  if (reply->error() != QNetworkReply::NoError) r.error = reply->errorString().toStdString();
  done(r);
}

}  // namespace tolvane::desktop
