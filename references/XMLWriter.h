#pragma once

#include <cstddef>
#include <string>

#include "references/XMLElement.h"

/// Prints element trees as UTF-8. Lines end with CR LF, each level is indented by four blanks, and
/// an element with neither children nor text is one self-closing tag. All throw XFormatViolation
/// for text that is not Unicode and for trees deeper than kGreatestXMLDepth.
namespace NSTolbrook {

/// The declaration and the tree.
std::string WriteXML(const CXMLElement& root);

/// The element as it would stand in a document `depth` levels below the root, from its "<" to its
/// last ">": without its first indentation and its last line end.
std::string WriteXMLFragment(const CXMLElement& element, std::size_t depth);

}  // namespace NSTolbrook
