#include "references/ReferenceChunk.h"

#include "references/XMLReader.h"
#include "references/XMLWriter.h"

namespace NSTambraPacking {

namespace {

constexpr const char* kDocumentKind = "sample reference";

}  // namespace

CSF10ReferenceChunk::CSF10ReferenceChunk() : CABCFormat(kDocumentKind) {}

CSF10ReferenceChunk::CSF10ReferenceChunk(std::uint32_t kind, CSampleReference reference)
    : CABCFormat(kDocumentKind), fKind(kind), fReference(std::move(reference)) {}

void CSF10ReferenceChunk::ReadBody(NSBigFilePackage::CMediaCursor& input) {
  fKind = NSTolbrook::ReadBodyNumber(input);
  const std::string document = NSTolbrook::ReadBodyString(input, kGreatestReferenceLength);
  fReference = CSampleReference::Parse(*NSTolbrook::ReadXML(document, kDocumentKind));
}

void CSF10ReferenceChunk::WriteBody(NSBigFilePackage::CMediaCursor& output) const {
  NSTolbrook::WriteBodyNumber(output, fKind);
  NSTolbrook::WriteBodyString(output, NSTolbrook::WriteXML(*fReference.Write(TypeOfKind(fKind))));
}

std::uint32_t KindOfReference(const CSampleReference& reference) {
  return reference.fType == ESampleType::kLQX ? kLQXReferenceKind : kSampleReferenceKind;
}

ESampleType TypeOfKind(std::uint32_t kind) {
  return kind == kLQXReferenceKind ? ESampleType::kLQX : ESampleType::kSample;
}

}  // namespace NSTambraPacking
