// Settings files: what the wizard says becomes one, and one fills the wizard.
#include <QDragEnterEvent>
#include <QFileInfo>
#include <QMimeData>
#include <optional>

#include "job/conversion_settings.h"
#include "ui/dialogs/message_box.h"
#include "ui/dialogs/save_text.h"
#include "ui/wizard/frm_wizard.h"

namespace dorvane {

namespace {

/// The one settings file that is dragged; none where it is anything else.
std::optional<QString> DraggedFile(const QMimeData& data) {
  const QList<QUrl> urls = data.urls();
  if (urls.size() != 1 || !urls.first().isLocalFile()) return std::nullopt;
  QString path = urls.first().toLocalFile();
  if (!path.endsWith(".dcs", Qt::CaseInsensitive)) return std::nullopt;
  return path;
}

void TellFailure(const std::string& what, const std::exception& error) {
  ShowMessage(what + ": " + error.what(), message_style::kError, "");
}

}  // namespace

void frmWizard::SaveSettings() {
  const std::optional<QString> chosen =
      AskWhereToSave(this, {.name = "cdSettings",
                            .title = "Save as settings file",
                            .proposal = QString::fromStdString(session_.src->DbName()) + ".dcs",
                            .filters = {"Settings files (*.dcs)"}});
  if (!chosen) return;
  const std::filesystem::path path = chosen->toStdString();
  std::filesystem::path log = path;
  try {
    SaveConversionSettings(path, *session_.src, *session_.dest, session_.tables,
                           log.replace_extension(".txt").string());
  } catch (const std::exception& error) {
    return TellFailure("The settings file cannot be written", error);
  }
  ShowMessage("Saved. A run of this file writes its log to " + log.string(),
              message_style::kInformation, "");
}

void frmWizard::OpenSettings(const std::filesystem::path& path) {
  ConversionSettings settings;
  try {
    files::LineReader file(path);
    settings = ReadConversionSettings(
        file, [this](ServerKind kind) { return services_.make_endpoint(kind, run_); });
  } catch (const std::exception& error) {
    return TellFailure("The settings file cannot be used", error);
  }
  const ServerKind source = settings.src->Kind();
  ShowStep(page::kDirection);
  direction_page_->Choose(source);
  session_.last = {};  // what the file leaves empty is empty
  session_.src->SetOptions(settings.src->Options());
  session_.src->SetSettings(settings.src->Settings());
  session_.dest->SetSettings(settings.dest->Settings());
  Page(SourcePage(source)).Fill(*settings.src);
  Page(DestinationPage(source)).Fill(*settings.dest);
  Page(DestinationPage(source)).ChooseExisting(settings.src->ConvertMode());
  tables_page_->Fill(settings.src->Options(), std::move(settings.tables));
  ShowStep(SourcePage(source));
}

void frmWizard::dragEnterEvent(QDragEnterEvent* event) {
  if (!IsBusy() && DraggedFile(*event->mimeData())) event->acceptProposedAction();
}

void frmWizard::dropEvent(QDropEvent* event) {
  const std::optional<QString> path = DraggedFile(*event->mimeData());
  if (!path || IsBusy()) return;
  event->acceptProposedAction();
  // Whoever dragged it does not wait for a message to be answered.
  QMetaObject::invokeMethod(
      this, [this, file = path->toStdString()] { OpenSettings(file); }, Qt::QueuedConnection);
}

}  // namespace dorvane
