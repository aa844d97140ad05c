#pragma once

#include <QString>

namespace varno {

/// Where the translations are: beside the program as it is installed, or as it is built.
[[nodiscard]] QString translationsFolder();

/// Loads the translation of the interface into the first of the user's languages that there is one
/// for in `folder`, with the toolkit's own; windows are laid out in its direction. The texts
/// themselves are in English, which needs none. Once, after the application is made and before the
/// first text is asked for.
void loadTranslation(const QString& folder = translationsFolder());

} // namespace varno
