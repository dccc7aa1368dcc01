// The fonts of a document: where its font files are looked for, and which of them are missing.
#pragma once

#include <filesystem>

class AcDbDatabase;

namespace host {

/// Fonts are looked for beside the drawing (its native folder; empty: there is none), in the working folder,
/// in the support folders and in their folders named "fonts", before those of the system.
void useFontsBeside(const std::filesystem::path& drawingFolder);

/// Tells on the command line, a line each, which fonts of the drawing's text styles are not there and what is
/// drawn instead; each font once as long as the program runs.
void tellMissingFonts(AcDbDatabase& database);

} // namespace host
