#include "desktop/services/SqliteLogStore.h"

#include <sqlite3.h>

#include <QDir>
#include <QFileInfo>
#include <QSqlDatabase>
#include <QSqlDriver>
#include <QSqlError>
#include <QSqlQuery>
#include <QVariant>

namespace tolvane::desktop {

namespace {

constexpr int kSchemaVersion = 1;

const char* const kCreate =
    "CREATE TABLE contacts (id INTEGER PRIMARY KEY, call TEXT NOT NULL, sig TEXT NOT NULL, "
    "reference TEXT NOT NULL, frequency INTEGER NOT NULL, band TEXT NOT NULL, mode TEXT NOT NULL, "
    "submode TEXT NOT NULL, utc INTEGER NOT NULL, rst_sent TEXT NOT NULL, rst_rcvd TEXT NOT NULL, "
    "own_call TEXT NOT NULL, comment TEXT NOT NULL)";

QString q(const std::string& text) { return QString::fromStdString(text); }

std::string why(const QSqlError& error) { return error.text().toStdString(); }

// Binds the contact's fields in the column order of the insert and update statements.
void bindContact(QSqlQuery& query, const log::Contact& c) {
  query.addBindValue(q(c.call));
  query.addBindValue(q(c.sig));
  query.addBindValue(q(c.reference));
  query.addBindValue(static_cast<qlonglong>(c.frequencyHz));
  query.addBindValue(q(c.band));
  query.addBindValue(q(c.mode));
  query.addBindValue(q(c.submode));
  query.addBindValue(static_cast<qlonglong>(c.utc));
  query.addBindValue(q(c.rstSent));
  query.addBindValue(q(c.rstReceived));
  query.addBindValue(q(c.ownCall));
  query.addBindValue(q(c.comment));
}

// Runs `work` in one transaction: committed when it returns true, rolled back otherwise.
template <typename Work>
bool transaction(QSqlDatabase db, std::string& error, Work work) {
  if (!db.transaction()) {
    error = why(db.lastError());
    return false;
  }
  if (!work()) {
    db.rollback();
    return false;
  }
  if (!db.commit()) {
    error = why(db.lastError());
    db.rollback();
    return false;
  }
  return true;
}

}  // namespace

SqliteLogStore::SqliteLogStore(const QString& path)
    : connection_(QStringLiteral("tolvane-log-%1").arg(reinterpret_cast<quintptr>(this))) {
  QDir().mkpath(QFileInfo(path).absolutePath());
  QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), connection_);
  db.setDatabaseName(path);
  if (!db.open()) {
    openError_ = "The log " + path.toStdString() + " cannot be opened: " + why(db.lastError());
    return;
  }
  QSqlQuery query(db);
  // Write-ahead journal, and every commit synced to the disk before it returns.
  query.exec(QStringLiteral("PRAGMA journal_mode=WAL"));
  query.exec(QStringLiteral("PRAGMA synchronous=FULL"));
  int version = -1;
  if (query.exec(QStringLiteral("PRAGMA user_version")) && query.next()) version = query.value(0).toInt();
  if (version > kSchemaVersion) {
    openError_ = "The log " + path.toStdString() + " was written by a newer version of Tolvane (schema " +
                 std::to_string(version) + ").";
    db.close();
    return;
  }
  if (version == 0) {
    std::string error;
    const bool created = transaction(db, error, [&] {
      return query.exec(QString::fromLatin1(kCreate)) &&
             query.exec(QStringLiteral("CREATE INDEX contacts_utc ON contacts(utc)")) &&
             query.exec(QStringLiteral("PRAGMA user_version=%1").arg(kSchemaVersion));
    });
    if (!created)
      openError_ = "The log " + path.toStdString() + " cannot be created: " + why(query.lastError()) + error;
  }
}

SqliteLogStore::~SqliteLogStore() {
  {
    QSqlDatabase db = QSqlDatabase::database(connection_, false);
    if (db.isOpen()) db.close();
  }
  QSqlDatabase::removeDatabase(connection_);
}

bool SqliteLogStore::ready(std::string& error) const {
  if (!openError_.empty()) {
    error = openError_;
    return false;
  }
  return true;
}

bool SqliteLogStore::load(std::vector<log::Contact>& contacts, std::string& error) {
  if (!ready(error)) return false;
  // The whole log is read whenever the Log page opens: straight from the
  // driver's own SQLite connection, each text taken as the UTF-8 it is
  // stored in, since Qt's row-by-row values cost four times as much.
  const QVariant handle = QSqlDatabase::database(connection_, false).driver()->handle();
  sqlite3* db = handle.isValid() && qstrcmp(handle.typeName(), "sqlite3*") == 0
                    ? *static_cast<sqlite3* const*>(handle.constData())
                    : nullptr;
  if (!db) {
    error = "The log's database driver is not SQLite.";
    return false;
  }
  sqlite3_stmt* statement = nullptr;
  if (sqlite3_prepare_v2(db,
                         "SELECT id, frequency, utc, call, sig, reference, band, mode, submode, rst_sent, rst_rcvd, "
                         "own_call, comment FROM contacts",
                         -1, &statement, nullptr) != SQLITE_OK) {
    error = sqlite3_errmsg(db);
    return false;
  }
  const auto text = [statement](int column) {
    const auto* bytes = reinterpret_cast<const char*>(sqlite3_column_text(statement, column));
    return bytes ? std::string(bytes, static_cast<std::size_t>(sqlite3_column_bytes(statement, column)))
                 : std::string();
  };
  int step = SQLITE_ROW;
  while ((step = sqlite3_step(statement)) == SQLITE_ROW) {
    log::Contact& c = contacts.emplace_back();
    c.id = sqlite3_column_int64(statement, 0);
    c.frequencyHz = sqlite3_column_int64(statement, 1);
    c.utc = sqlite3_column_int64(statement, 2);
    c.call = text(3);
    c.sig = text(4);
    c.reference = text(5);
    c.band = text(6);
    c.mode = text(7);
    c.submode = text(8);
    c.rstSent = text(9);
    c.rstReceived = text(10);
    c.ownCall = text(11);
    c.comment = text(12);
  }
  if (step != SQLITE_DONE) error = sqlite3_errmsg(db);
  sqlite3_finalize(statement);
  return step == SQLITE_DONE;
}

bool SqliteLogStore::insert(std::vector<log::Contact>& contacts, std::string& error) {
  if (!ready(error)) return false;
  QSqlDatabase db = QSqlDatabase::database(connection_, false);
  std::vector<std::int64_t> ids;
  const bool done = transaction(db, error, [&] {
    QSqlQuery fresh(db), again(db);
    fresh.prepare(
        QStringLiteral("INSERT INTO contacts (call, sig, reference, frequency, band, mode, submode, utc, "
                       "rst_sent, rst_rcvd, own_call, comment) VALUES (?,?,?,?,?,?,?,?,?,?,?,?)"));
    again.prepare(
        QStringLiteral("INSERT INTO contacts (call, sig, reference, frequency, band, mode, submode, utc, "
                       "rst_sent, rst_rcvd, own_call, comment, id) VALUES (?,?,?,?,?,?,?,?,?,?,?,?,?)"));
    for (const log::Contact& c : contacts) {
      QSqlQuery& query = c.id == 0 ? fresh : again;
      bindContact(query, c);
      if (c.id != 0) query.addBindValue(static_cast<qlonglong>(c.id));
      if (!query.exec()) {
        error = why(query.lastError());
        return false;
      }
      ids.push_back(c.id != 0 ? c.id : query.lastInsertId().toLongLong());
    }
    return true;
  });
  if (!done) return false;
  for (std::size_t i = 0; i < contacts.size(); ++i) contacts[i].id = ids[i];
  return true;
}

bool SqliteLogStore::update(const log::Contact& contact, std::string& error) {
  if (!ready(error)) return false;
  QSqlDatabase db = QSqlDatabase::database(connection_, false);
  return transaction(db, error, [&] {
    QSqlQuery query(db);
    query.prepare(
        QStringLiteral("UPDATE contacts SET call=?, sig=?, reference=?, frequency=?, band=?, mode=?, "
                       "submode=?, utc=?, rst_sent=?, rst_rcvd=?, own_call=?, comment=? WHERE id=?"));
    bindContact(query, contact);
    query.addBindValue(static_cast<qlonglong>(contact.id));
    if (query.exec()) return true;
    error = why(query.lastError());
    return false;
  });
}

bool SqliteLogStore::remove(const std::vector<std::int64_t>& ids, std::string& error) {
  if (!ready(error)) return false;
  QSqlDatabase db = QSqlDatabase::database(connection_, false);
  return transaction(db, error, [&] {
    QSqlQuery query(db);
    query.prepare(QStringLiteral("DELETE FROM contacts WHERE id=?"));
    for (std::int64_t id : ids) {
      query.addBindValue(static_cast<qlonglong>(id));
      if (!query.exec()) {
        error = why(query.lastError());
        return false;
      }
    }
    return true;
  });
}

}  // namespace tolvane::desktop
