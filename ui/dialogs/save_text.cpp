#include "ui/dialogs/save_text.h"

#include <QFileDialog>
#include <QSaveFile>

#include "endpoint/events.h"
#include "ui/dialogs/message_box.h"

namespace dorvane {

namespace {

/// "html" of "html (*.html *.htm)".
QString SuffixOf(const QString& filter) {
  return filter.section("*.", 1, 1).section(' ', 0, 0).remove(')');
}

}  // namespace

std::optional<QString> AskWhereToSave(QWidget* parent, const SaveDialog& dialog) {
  QFileDialog chooser(parent, dialog.title, dialog.proposal);
  chooser.setObjectName(dialog.name);
  chooser.setAcceptMode(QFileDialog::AcceptSave);
  chooser.setNameFilters(dialog.filters);
  chooser.setDefaultSuffix(SuffixOf(dialog.filters.first()));
  QObject::connect(&chooser, &QFileDialog::filterSelected, [&chooser](const QString& filter) {
    chooser.setDefaultSuffix(SuffixOf(filter));
  });
  if (chooser.exec() != QDialog::Accepted) return std::nullopt;
  return chooser.selectedFiles().first();
}

void SaveTextAs(QWidget& parent, const SaveDialog& dialog, const char* what, const QString& text) {
  const std::optional<QString> path = AskWhereToSave(&parent, dialog);
  if (!path) return;
  QSaveFile saved(*path);
  const QByteArray bytes = text.toUtf8();
  if (saved.open(QIODevice::WriteOnly) && saved.write(bytes) == bytes.size() && saved.commit()) {
    return;
  }
  ShowMessage(QString("The %1 cannot be saved: %2").arg(what, saved.errorString()).toStdString(),
              message_style::kError, "");
}

}  // namespace dorvane
