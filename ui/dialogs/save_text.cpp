#include "ui/dialogs/save_text.h"

#include <QFileDialog>
#include <QSaveFile>

#include "endpoint/events.h"
#include "ui/dialogs/message_box.h"

namespace dorvane {

void SaveTextAs(QWidget& parent, const TextFile& file, const QString& text) {
  QFileDialog dialog(&parent, file.title, file.proposal, QString("%1 (*.%1)").arg(file.suffix));
  dialog.setObjectName(file.dialog);
  dialog.setAcceptMode(QFileDialog::AcceptSave);
  dialog.setDefaultSuffix(file.suffix);
  if (dialog.exec() != QDialog::Accepted) return;
  QSaveFile saved(dialog.selectedFiles().first());
  const QByteArray bytes = text.toUtf8();
  if (saved.open(QIODevice::WriteOnly) && saved.write(bytes) == bytes.size() && saved.commit()) {
    return;
  }
  ShowMessage(
      QString("The %1 cannot be saved: %2").arg(file.what, saved.errorString()).toStdString(),
      message_style::kError, "");
}

}  // namespace dorvane
