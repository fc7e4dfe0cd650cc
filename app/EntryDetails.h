#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "app/PackageContents.h"
#include "app/TextResources.h"
#include "codecs/JpegReader.h"
#include "filetypes/dwop/DWOPHeader.h"

namespace NSTambraPacking {

/// A line of what is told about an entry: what it says, and its value.
struct CDetailLine {
  std::u16string fLabel;
  std::u16string fValue;
};

/// One of the things that an entry holds or refers to.
struct CDetailItem {
  std::u16string fText;
  std::u16string fPlace;   ///< what is said beside it; may be empty
  std::u16string fTarget;  ///< the path of the entry that it leads to; empty when to none
};

/// What there is to show of an entry, or of a package as a whole.
struct CEntryDetails {
  std::vector<CDetailLine> fLines;
  std::optional<CDWOPHeader> fSample;  ///< of a sample whose header can be read
  std::optional<CPixels> fPicture;
  std::u16string fItemsTitle;  ///< empty when there is no list
  std::vector<CDetailItem> fItems;
  std::u16string fFault;  ///< why not everything can be shown; empty when it can
};

/// Bytes of pixels that are decoded to be shown; larger pictures are only described.
inline constexpr std::uint64_t kMostShownPixelBytes = std::uint64_t{64} << 20;

/// By the entry's type; reads what that takes, a sample's header alone. Whatever is wrong with the
/// entry is told in fFault. Throws XRead and, when `stopRequested` says so, XSilentAbort.
CEntryDetails DescribeEntry(const CTextResources& texts, const CPackageContents& package,
                            const CPackageEntry& entry, std::function<bool()> stopRequested);

/// The package's texts and its splash picture.
CEntryDetails DescribePackage(const CTextResources& texts, const CPackageContents& package);

/// The loop of a sample as the user reads it.
std::u16string LoopText(const CTextResources& texts, const CDWOPHeader& header);

/// A MIDI note number with the key's name; middle C, 60, is C4 (scientific pitch notation).
std::u16string KeyText(const CTextResources& texts, std::uint8_t key);

}  // namespace NSTambraPacking
