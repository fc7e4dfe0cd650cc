#include "app/demo/DemoReference.h"

#include "Parts/TolbrookPackage/Core/FileItem.h"

#include "app/demo/DemoFile.h"
#include "package/EntryPath.h"
#include "package/MemoryMedia.h"
#include "references/DeviceDescriptionChunk.h"

namespace NSTambraPacking {

namespace {

std::vector<std::uint8_t> BodyOf(const NSTolbrook::CABCFormat& format) {
  NSBigFilePackage::CMemoryMedia media;
  NSBigFilePackage::CMediaCursor output(media);
  format.Write(output);
  return media.TakeBytes();
}

/// Up from the document's folder to the one that both share, then down.
CRelativePath RelativeFrom(const CPathComponents& document, const CPathComponents& target) {
  std::size_t shared = 0;
  while (shared + 1 < document.size() && shared + 1 < target.size() &&
         document[shared] == target[shared]) {
    ++shared;
  }
  const auto first = target.begin() + static_cast<std::ptrdiff_t>(shared);
  return CRelativePath(static_cast<std::int32_t>(document.size() - 1 - shared),
                       CPathComponents(first, target.end()));
}

CPathComponents Below(CPathComponents folders, const CPathComponents& path) {
  folders.insert(folders.end(), path.begin(), path.end());
  return folders;
}

}  // namespace

CSampleReference MakeDemoReference(const CDemoTarget& target, std::u16string_view documentPath) {
  const auto has = [&target](EDemoForms form) { return (target.fForms & form) != 0; };
  const CPathComponents components = SplitEntryPath(target.fPath);
  CSampleReference reference;
  reference.fTrueName = components.back();
  reference.fUserFriendlyName = reference.fTrueName.substr(0, reference.fTrueName.rfind(u'.'));
  const bool isLoop = NSTolbrook::CFileItem(NSTolbrook::NativeFromText(reference.fTrueName))
                          .IsOfType(u".lqx;.lq2;.lqx2;.qzl");
  reference.fType = isLoop ? ESampleType::kLQX : ESampleType::kSample;
  if (has(kDemoPackage)) {
    reference.fTambraName = kDemoLibraryName;
    reference.fTambraURL = kDemoLibraryURL;
    reference.fPackageName = kDemoLibraryName;
  }
  if (has(kDemoMoved)) {
    reference.fRelativePath = CRelativePath(1, Below({u"Alte Ablage"}, {components.back()}));
  } else if (has(kDemoRelative)) {
    reference.fRelativePath = RelativeFrom(SplitEntryPath(documentPath), components);
  }
  if (has(kDemoDatabase)) {
    reference.fDatabasePath =
        has(kDemoPackage) ? CDatabasePath(EDatabasePathKind::kPackage, kDemoLibraryName, components)
                          : CDatabasePath(EDatabasePathKind::kPlain, u"", components);
  }
  if (has(kDemoAbsolute)) {
    reference.fAbsolutePath =
        CAbsolutePath(u"Studio", Below({u"Bibliotheken", u"Demo"}, components));
  }
  return reference;
}

std::vector<std::uint8_t> ReferenceBody(const CSampleReference& reference) {
  return BodyOf(CSF10ReferenceChunk(KindOfReference(reference), reference));
}

std::vector<std::uint8_t> DeviceBody(std::uint8_t kind, const char16_t* name,
                                     const char16_t* identifier) {
  return BodyOf(CSF10DevicePatchDescriptionChunk({kind, name, identifier}));
}

}  // namespace NSTambraPacking
