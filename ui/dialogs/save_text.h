#pragma once

#include <QString>
#include <QWidget>

namespace dorvane {

/// What a text is saved as.
struct TextFile {
  const char* dialog;    // the file dialog's object name
  const char* title;     // "Save the messages"
  const char* proposal;  // "messages.txt"
  const char* suffix;    // "txt"
  const char* what;      // "messages", in the message of a failure
};

/// Asks for a file and saves the text as UTF-8. A failure is shown, and the file stays as it was.
void SaveTextAs(QWidget& parent, const TextFile& file, const QString& text);

}  // namespace dorvane
