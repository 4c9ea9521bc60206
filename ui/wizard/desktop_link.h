#pragma once

#include <QString>
#include <optional>

namespace dorvane {

/// What the desktop shows of a run beside the window, told over the session bus. Where there is no
/// bus, or nothing on it that listens, nothing happens. Never waits.
class DesktopLink {
 public:
  /// Shows a share of 0 to 100 on the program's entry of the task bar; none takes it away.
  void ShowPercent(std::optional<int> percent);
  void Notify(const QString& title, const QString& text);
};

}  // namespace dorvane
