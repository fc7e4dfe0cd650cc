#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "references/XMLElement.h"

/// Builds element trees from UTF-8 text. A leading byte-order mark, comments and processing
/// instructions are skipped, CDATA sections are text. Text that is nothing but blanks and line ends
/// is layout and dropped; in an element with children it is also trimmed at both ends.
///
/// Every fault of the text is XFormatViolation with "target_object_type" = "xml_format",
/// "line_number" (line feeds counted from 1), "xml_error" = one of the kinds below, and where it
/// applies "expected_character" and "offending_character".
namespace NSTolbrook {

inline constexpr const char* kXMLFormat = "xml_format";
inline constexpr const char* kXMLLineNumber = "line_number";
inline constexpr const char* kXMLError = "xml_error";
/// The fault's own text, where the message names the document instead.
inline constexpr const char* kXMLMessage = "xml_message";
inline constexpr const char* kXMLExpectedCharacter = "expected_character";
inline constexpr const char* kXMLOffendingCharacter = "offending_character";

inline constexpr const char* kXMLFormatTagError = "xml_format_tag_error";
inline constexpr const char* kXMLExpectedCharError = "expected_char_error";
inline constexpr const char* kXMLUnexpectedCharError = "unexpected_char_error";
inline constexpr const char* kXMLUnexpectedEndOfFileError = "unexpected_end_of_file_error";
inline constexpr const char* kXMLUnsupportedAmpError = "unsupported_amp_error";
inline constexpr const char* kXMLTagMismatchError = "tag_mismatch_error";

/// The root element of `text`; the source ranges of all elements are set. Throws XFormatViolation
/// for a fault, for a text without element ("Patch format error: Empty XML file"), for a second
/// root ("Patch format error: Only one top level XML element allowed") and beyond the limits of
/// XMLLimits.h; XVersionTooNew "A newer Ostrum version is needed to read this " + `kind` when the
/// declaration names a version later than 1.0.
std::shared_ptr<CXMLElement> ReadXML(std::string_view text, const std::string& kind = "document");

/// As ReadXML, for a document that has a name: a fault of the text becomes "Format error in " +
/// `name`, with the context values of the fault and its own text as kXMLMessage.
std::shared_ptr<CXMLElement> LoadXMLDocument(std::string_view text, const std::string& kind,
                                             const std::string& name);

/// Reads the root's start tag alone from the first bytes of a document: its name and those of its
/// attributes that end inside `head`. Null when the name itself does not end inside `head`. Throws
/// as ReadXML for faults before that point.
std::shared_ptr<CXMLElement> ReadXMLRootTag(std::string_view head);

}  // namespace NSTolbrook
