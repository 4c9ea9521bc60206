#pragma once

#include <QString>
#include <QStringList>
#include <QWidget>
#include <optional>

namespace dorvane {

/// A dialog that asks where to save something.
struct SaveDialog {
  const char* name;  // the dialog's object name
  const char* title;
  QString proposal;     // "messages.txt"
  QStringList filters;  // "txt (*.txt)"; a name without an ending gets the chosen one's first
};

/// The path; none when the person thinks better of it.
std::optional<QString> AskWhereToSave(QWidget* parent, const SaveDialog& dialog);

/// Asks and saves the text as UTF-8. A failure is shown, and the file stays as it was; `what` is
/// what it then says that cannot be saved: "messages".
void SaveTextAs(QWidget& parent, const SaveDialog& dialog, const char* what, const QString& text);

}  // namespace dorvane
