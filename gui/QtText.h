#pragma once

#include <QString>
#include <QTextDocument>
#include <string>
#include <string_view>

#include "Parts/TolbrookPackage/Core/FileSystem.h"

/// Between the program's texts and paths and Qt's.
namespace NSTambraGui {

inline QString ToQt(std::u16string_view text) {
  return QString::fromUtf16(text.data(), static_cast<qsizetype>(text.size()));
}

inline QString ToQt(std::string_view utf8) {
  return QString::fromUtf8(utf8.data(), static_cast<qsizetype>(utf8.size()));
}

inline std::u16string FromQt(const QString& text) { return text.toStdU16String(); }

inline QString PathToQt(const NSTolbrook::NativePath& path) {
  return ToQt(NSTolbrook::DisplayText(path));
}

/// A tool tip of just this text, which is never taken for markup, in lines of a fair length.
inline QString ToolTipOf(const QString& text) { return Qt::convertFromPlainText(text); }

/// Throws as NSTolbrook::NativeFromText.
inline NSTolbrook::NativePath PathFromQt(const QString& path) {
  return NSTolbrook::NativeFromText(FromQt(path));
}

}  // namespace NSTambraGui
