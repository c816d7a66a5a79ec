#pragma once

namespace Qorvane {

/// Whether the user reads Chinese: the most wanted of their languages is Chinese, or else the language of
/// the locale in force is. Decides the encoders, the vocabulary and the predefined tags. Any thread.
bool isChineseLocale();

} // namespace Qorvane
