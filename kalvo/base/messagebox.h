#pragma once
// The message box of the trace functions. There is no desktop to rely on, so a process-wide handler shows it.

#include "kalvo/base/kxexport.h"

namespace Zelkor::Platform {

/// Shows a message and returns the number of the button that closed it.
/// `style` is a bit set: 0x2000 task-modal, 0x30 exclamation icon, 0 a single OK button.
using MessageBoxHandler = int (*)(const char* text, const char* caption, unsigned style);

/// Number of the OK button.
inline constexpr int kMessageBoxOk = 1;

/// Replaces the handler that shows message boxes and returns the previous one. Any thread may call it.
/// The first handler writes one line to the standard error stream and does not wait.
/// @param handler  called on the thread that reports, must not throw; null puts the first handler back
KX_API MessageBoxHandler SetMessageBoxHandler(MessageBoxHandler handler);

/// Shows `text` under `caption`, neither of them null, through the current handler and returns its answer.
KX_API int MessageBoxA(const char* text, const char* caption, unsigned style);

}  // namespace Zelkor::Platform
