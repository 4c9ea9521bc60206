#include "ui/wizard/encryption_fields.h"

#include <QFileDialog>
#include <QHBoxLayout>

#include "ui/controls/make_child.h"
#include "ui/wizard/theme.h"

namespace dorvane {

namespace {

struct Choice {
  ado::Encryption value;
  const char* caption;
  const char* tool_tip;
};
constexpr Choice kChoices[] = {
    {ado::Encryption::Offered, "Offered", "Encrypted when the server offers it."},
    {ado::Encryption::Required, "Required", "Encrypted or not at all."},
    {ado::Encryption::Verified, "Verified",
     "Encrypted, and the server's certificate is from a known authority and for this host name."},
};

QComboBox& MakeList(const char* name, QWidget& card) {
  auto& list = MakeNamed<QComboBox>(name, card);
  for (const Choice& choice : kChoices) {
    list.addItem(choice.caption);
    list.setItemData(list.count() - 1, choice.tool_tip, Qt::ToolTipRole);
  }
  theme::StyleDropDown(list);
  return list;
}

}  // namespace

EncryptionFields::EncryptionFields(const Names& names, QGridLayout& grid, int row, QWidget* card)
    : QObject(card),
      list_(MakeList(names.encryption, *card)),
      file_label_(MakeChild<QLabel>(*card, "CA &file")),
      file_(MakeNamed<QLineEdit>(names.ca_file, *card)),
      browse_(theme::AddButton(names.browse, *card, "...", '\0')) {
  auto& label = MakeChild<QLabel>(*card, "Encr&yption");
  label.setBuddy(&list_);
  list_.setAccessibleName("Encryption");
  file_label_.setBuddy(&file_);
  file_.setAccessibleName("CA file");
  file_.setPlaceholderText("the system's authorities");
  browse_.setAccessibleName("Browse for the CA file");
  grid.addWidget(&label, row, 0);
  grid.addWidget(&list_, row, 1);
  grid.addWidget(&file_label_, row, 2);
  auto& pair = MakeLayout<QHBoxLayout>(grid, row, 3);
  pair.setSpacing(theme::kGap / 2);
  pair.addWidget(&file_);
  pair.addWidget(&browse_);
  ShowFile();

  connect(&list_, &QComboBox::currentIndexChanged, this, &EncryptionFields::ShowFile);
  connect(&browse_, &QAbstractButton::clicked, this, &EncryptionFields::Browse);
}

ado::Encryption EncryptionFields::Encryption() const {
  return kChoices[list_.currentIndex()].value;
}

std::string EncryptionFields::CaFile() const {
  return Encryption() == ado::Encryption::Verified ? file_.text().toStdString() : std::string();
}

void EncryptionFields::Clear() {
  list_.setCurrentIndex(0);
  file_.clear();
}

void EncryptionFields::Choose(ado::Encryption encryption, const std::string& ca_file) {
  for (int i = 0; i < list_.count(); ++i) {
    if (kChoices[i].value == encryption) list_.setCurrentIndex(i);
  }
  file_.setText(QString::fromStdString(ca_file));
}

void EncryptionFields::SetEnabled(bool enabled) {
  list_.setEnabled(enabled);
  file_.setEnabled(enabled);
  browse_.SetEnabled(enabled);
}

void EncryptionFields::ShowFile() {
  list_.setToolTip(kChoices[list_.currentIndex()].tool_tip);
  const bool verified = Encryption() == ado::Encryption::Verified;
  for (QWidget* widget : {static_cast<QWidget*>(&file_label_), static_cast<QWidget*>(&file_),
                          static_cast<QWidget*>(&browse_)}) {
    widget->setVisible(verified);
  }
}

void EncryptionFields::Browse() {
  QFileDialog cdCaFile(file_.window(), "CA file", file_.text(),
                       "Certificates (*.pem *.crt *.cer);;All files (*)");
  cdCaFile.setObjectName("cdCaFile");
  cdCaFile.setFileMode(QFileDialog::ExistingFile);
  if (cdCaFile.exec() != QDialog::Accepted) return;
  file_.setText(cdCaFile.selectedFiles().first());
}

}  // namespace dorvane
