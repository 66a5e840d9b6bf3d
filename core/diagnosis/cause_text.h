#pragma once

#include "core/diagnosis/explainer.h"

#include <string>
#include <string_view>

namespace loadwarden {

// Every sentence of the diagnosis of slowness is built here, so the window
// and the command line say the same thing.
namespace CauseText {

std::string title(const Cause& cause);
std::string detail(const Cause& cause);
std::string_view symbol(Cause::Kind kind);

// The label of the fix's button; appName names the app acted on.
std::string fixLabel(const Cause::Fix& fix, std::string_view appName);

std::string_view question();
std::string_view allClearTitle();
std::string_view allClearSentence();
std::string_view busiestHeading();

} // namespace CauseText

} // namespace loadwarden
