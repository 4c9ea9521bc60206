#pragma once

#include <QPointer>
#include <cstdint>
#include <filesystem>

#include "ui/help/help_window.h"

namespace dorvane {

/// The program's way to its help file. Every display operation opens the help window, or brings it
/// to the front when it is open; a file that is missing is reported there. The window closes with
/// the viewer.
class HTMLHelpViewer {
 public:
  HTMLHelpViewer() = default;
  HTMLHelpViewer(const HTMLHelpViewer&) = delete;
  HTMLHelpViewer& operator=(const HTMLHelpViewer&) = delete;
  ~HTMLHelpViewer() { Unload(); }

  const std::filesystem::path& HelpFile() const { return help_file_; }
  /// Counts for the next window.
  void SetHelpFile(std::filesystem::path file_name) { help_file_ = std::move(file_name); }

  void ShowContents() { Window().ShowContents(); }
  /// The first topic.
  void Show() { Window().ShowDefaultTopic(); }
  void ShowIndex() { Window().ShowIndex(); }
  void ShowSearch() { Window().ShowSearch(); }
  void ShowContext(std::int32_t context_id) { Window().ShowContext(context_id); }
  /// Closes the window when there is one.
  void Unload();

 private:
  HelpWindow& Window();

  std::filesystem::path help_file_;
  QPointer<HelpWindow> window_;  // deletes itself when the user closes it
};

}  // namespace dorvane
