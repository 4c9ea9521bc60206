#pragma once

namespace dorvane {

/// Processes what is pending but keys, clicks and requests to close, which come later.
void ProcessAllButUserInput();

/// Has the keys and clicks delivered that were left waiting by ExcludeUserInputEvents. On X11
/// nobody looks at them before the next event arrives: the last key typed would be missing.
void ResumeUserInput();

}  // namespace dorvane
