#include "app/EntryDetails.h"

#include <array>
#include <fmt/format.h>

#include "Parts/TolbrookPackage/Core/Exception.h"
#include "Parts/TolbrookPackage/Core/Text.h"

#include "app/FileTypeNames.h"
#include "app/PackageTextNumbers.h"
#include "app/VersionText.h"
#include "codecs/MIDIParser.h"
#include "codecs/SoundFontParser.h"
#include "filetypes/FileTypeRegistry.h"

namespace NSTambraPacking {

namespace {

using NSTolbrook::TextFromUtf8;

constexpr std::int32_t kPictureEntryType = 9;
constexpr std::int32_t kMIDIEntryType = 10;

std::u16string Number(std::int64_t value) { return TextFromUtf8(std::to_string(value)); }

std::u16string DurationText(const CTextResources& texts, double seconds) {
  if (seconds < 60)
    return texts.Text(kDurationSeconds, {TextFromUtf8(fmt::format("{:.3f}", seconds))});
  const auto minutes = static_cast<std::int64_t>(seconds / 60);
  const double rest = seconds - 60.0 * static_cast<double>(minutes);
  return texts.Text(kDurationMinutes, {Number(minutes), TextFromUtf8(fmt::format("{:.1f}", rest))});
}

/// Fills the details of one entry by its type.
class CDescriber {
 public:
  CDescriber(const CTextResources& texts, const CPackageContents& package,
             const CPackageEntry& entry, std::function<bool()> stopRequested)
      : fTexts(texts), fPackage(package), fEntry(entry), fStopRequested(std::move(stopRequested)) {}

  CEntryDetails Describe() {
    Add(kDetailPath, fEntry.Path());
    Add(kColumnType, EntryTypeName(fTexts, fEntry.TypeCode()));
    try {
      DescribeByType();
    } catch (const NSMordel::XRead&) {
      throw;
    } catch (const NSMordel::XSilentAbort&) {
      throw;
    } catch (const NSMordel::CExceptionBodyMixin& e) {
      fDetails.fFault = fTexts.Text(kEntryDamaged, {TextFromUtf8(e.Message())});
    }
    return std::move(fDetails);
  }

 private:
  void DescribeByType() {
    const std::int32_t type = fEntry.TypeCode();
    if (type == kSampleEntryType) return DescribeSample();
    if (type == kPictureEntryType) return DescribePicture();
    if (type == kMIDIEntryType) return DescribeMIDI();
    if (type == kSoundFontEntryType) return DescribeBank();
    if (CFileTypeRegistry::Instance().HasReferences(type)) DescribeDocument();
  }

  void Add(CStringNumber label, std::u16string value) {
    fDetails.fLines.push_back({fTexts.Text(label), std::move(value)});
  }

  void DescribeSample() {
    NSBigFilePackage::CMediaCursor input(*fEntry.Data());
    const CDWOPHeader header = ReadDWOPHeader(input);
    fDetails.fSample = header;
    Add(kDetailFormat,
        fTexts.Text(kSampleFormat, {Number(header.fRate), Number(header.fWidth),
                                    fTexts.Text(header.fChannels == 1 ? kMono : kStereo)}));
    Add(kSampleFrames, Number(header.fLength));
    if (header.fRate > 0) {
      Add(kDetailDuration, DurationText(fTexts, double{1.0} * header.fLength / header.fRate));
    }
    Add(kSampleRootKey, KeyText(fTexts, header.fRootKey));
    Add(kSampleFineTune,
        fTexts.Text(kCentsValue, {Number(static_cast<std::int8_t>(header.fFineTune))}));
    Add(kSampleLoop, LoopText(fTexts, header));
  }

  void DescribePicture() {
    fDetails.fPicture = CJpegReader().ReadPixels(fEntry.Data(), kMostShownPixelBytes);
    const CPictureSize size = fDetails.fPicture->fSize;
    Add(kDetailPixels, fTexts.Text(kPixelsValue, {Number(size.fWidth), Number(size.fHeight)}));
  }

  void DescribeMIDI() {
    const CMIDISummary summary = CMIDIParser(*fEntry.Data()).Parse();
    Add(kDetailFormat, fTexts.Text(kMIDIFormat, {Number(summary.fFormat)}));
    Add(kMIDITracks, Number(summary.fTracks));
    Add(kDetailDuration, DurationText(fTexts, summary.fSeconds));
    Add(kMIDINotes, Number(static_cast<std::int64_t>(summary.fNotes)));
    Add(kMIDIEvents, Number(static_cast<std::int64_t>(summary.fChannelEvents +
                                                      summary.fSysexEvents + summary.fMetaEvents)));
    if (summary.fTrackNames.empty()) return;
    fDetails.fItemsTitle = fTexts.Text(kMIDITrackNames);
    for (const std::u16string& name : summary.fTrackNames) {
      fDetails.fItems.push_back({name, {}, {}});
    }
  }

  void DescribeBank() {
    const CSoundFontBank bank = CSoundFontParser(fEntry.Data()).Parse();
    Add(kBankName, bank.fName);
    if (!bank.fEngine.empty()) Add(kBankEngine, bank.fEngine);
    Add(kInfoVersion,
        TextFromUtf8(fmt::format("{}.{:02}", bank.fMajorVersion, bank.fMinorVersion)));
    Add(kBankInstruments, Number(static_cast<std::int64_t>(bank.fInstruments.size())));
    Add(kBankSamples, Number(static_cast<std::int64_t>(bank.fSamples.size())));
    fDetails.fItemsTitle =
        fTexts.Text(kBankPresets, {Number(static_cast<std::int64_t>(bank.fPresets.size()))});
    for (const CSoundFontPreset& preset : bank.fPresets) {
      fDetails.fItems.push_back(
          {preset.fName,
           fTexts.Text(kBankPresetPlace, {Number(preset.fBank), Number(preset.fProgram)}),
           {}});
    }
  }

  void DescribeDocument() {
    for (CEntryReference& reference : fPackage.ReferencesOf(fEntry, fStopRequested)) {
      std::u16string place = reference.fTarget;
      if (place.empty()) {
        place = reference.fTambraName.empty() || reference.fTambraName == PackageName()
                    ? fTexts.Text(kReferenceNowhere)
                    : fTexts.Text(kReferenceElsewhere, {reference.fTambraName});
      }
      fDetails.fItems.push_back(
          {std::move(reference.fPrinted), std::move(place), std::move(reference.fTarget)});
    }
    const auto count = static_cast<std::int64_t>(fDetails.fItems.size());
    fDetails.fItemsTitle =
        count == 0 ? fTexts.Text(kNoReferences) : fTexts.Text(kDocumentReferences, {Number(count)});
  }

  const std::u16string& PackageName() const { return fPackage.Header().fTambraName; }

  const CTextResources& fTexts;
  const CPackageContents& fPackage;
  const CPackageEntry& fEntry;
  std::function<bool()> fStopRequested;
  CEntryDetails fDetails;
};

}  // namespace

CEntryDetails DescribeEntry(const CTextResources& texts, const CPackageContents& package,
                            const CPackageEntry& entry, std::function<bool()> stopRequested) {
  return CDescriber(texts, package, entry, std::move(stopRequested)).Describe();
}

CEntryDetails DescribePackage(const CTextResources& texts, const CPackageContents& package) {
  const CPackageHeader& header = package.Header();
  CEntryDetails details;
  const auto add = [&](CStringNumber label, std::u16string value) {
    details.fLines.push_back({texts.Text(label), std::move(value)});
  };
  add(kInfoName, header.fTambraName);
  add(kInfoVersion, DisplayVersion(texts, header.fVersion));
  add(kInfoAddress, header.fURL);
  add(kInfoCopyright, header.fCopyright);
  add(kInfoComment, header.fComment);
  try {
    details.fPicture = CJpegReader().ReadPixels(package.Splash(), kMostShownPixelBytes);
  } catch (const NSMordel::XFormatViolation& e) {
    details.fFault = texts.Text(kEntryDamaged, {TextFromUtf8(e.Message())});
  } catch (const NSMordel::XUnsupportedFormat& e) {
    details.fFault = texts.Text(kEntryDamaged, {TextFromUtf8(e.Message())});
  }
  return details;
}

std::u16string LoopText(const CTextResources& texts, const CDWOPHeader& header) {
  const std::u16string start = Number(header.fLoopStart);
  const std::u16string end = Number(header.fLoopEnd);
  switch (static_cast<ELoopMode>(header.fLoopMode)) {
    case ELoopMode::kNone:
      return texts.Text(kThereIsNone);
    case ELoopMode::kForward:
      return texts.Text(kLoopForward, {start, end});
    case ELoopMode::kAlternating:
      return texts.Text(kLoopAlternating, {start, end});
  }
  return texts.Text(kLoopOther, {Number(header.fLoopMode), start, end});
}

std::u16string KeyText(const CTextResources& texts, std::uint8_t key) {
  static constexpr std::array kNames = {"C",  "C#", "D",  "D#", "E",  "F",
                                        "F#", "G",  "G#", "A",  "A#", "B"};
  const std::string name = kNames.at(key % 12u) + std::to_string(key / 12 - 1);
  return texts.Text(kKeyValue, {Number(key), TextFromUtf8(name)});
}

}  // namespace NSTambraPacking
