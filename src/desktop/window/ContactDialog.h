// The Log Contact form: one contact's fields, filled from a draft (a spot and
// the radio) or from a logged contact being edited. Save checks the fields
// and closes with the contact; Cancel leaves the log as it was.
#pragma once

#include <QDialog>

#include "log/Contact.h"

class QComboBox;
class QDateTimeEdit;
class QLabel;
class QLineEdit;

namespace tolvane::desktop {

class ContactDialog : public QDialog {
  Q_OBJECT
 public:
  ContactDialog(const log::Contact& draft, const QString& title, QWidget* parent = nullptr);
  // The contact as the fields hold it; valid after accept().
  const log::Contact& contact() const { return contact_; }
  // Checks the fields and, when they make a contact, accepts; otherwise the
  // form says what is wrong and stays open.
  void save();
  QString problem() const;

 private:
  bool read();

  log::Contact contact_;
  QLineEdit* call_;
  QComboBox* programme_;
  QLineEdit* reference_;
  QLineEdit* frequency_;
  QLabel* band_;
  QComboBox* mode_;
  QDateTimeEdit* time_;
  QLineEdit* sent_;
  QLineEdit* received_;
  QLineEdit* ownCall_;
  QLineEdit* comment_;
  QLabel* problem_;
};

}  // namespace tolvane::desktop
