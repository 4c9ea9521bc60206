#pragma once

#include <QComboBox>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QObject>
#include <string>

#include "platform/ado/connection_settings.h"
#include "ui/controls/gradient_button.h"

namespace dorvane {

/// The fields of a connection page that say how its connection is encrypted: a list, and the file
/// of the authorities, which is shown only where certificates are verified.
class EncryptionFields : public QObject {
 public:
  /// Names are those of the controls.
  struct Names {
    const char* encryption;
    const char* ca_file;
    const char* browse;
  };
  /// Takes a row of the card's grid, which has four columns.
  EncryptionFields(const Names& names, QGridLayout& grid, int row, QWidget* card);

  ado::Encryption Encryption() const;
  /// Empty where certificates are not verified.
  std::string CaFile() const;
  void Clear();
  void Choose(ado::Encryption encryption, const std::string& ca_file);
  void SetEnabled(bool enabled);

 private:
  void Browse();
  void ShowFile();

  QComboBox& list_;
  QLabel& file_label_;
  QLineEdit& file_;
  GradientButton& browse_;
};

}  // namespace dorvane
