#include "package/PackageHeader.h"

#include "package/PackageFormat.h"

namespace NSTambraPacking {

using NSBigFilePackage::CMediaCursor;

void WritePackageHeader(CMediaCursor& output, const CPackageHeader& header) {
  WriteTextField(output, header.fTambraName);
  WriteTextField(output, header.fComment);
  WriteTextField(output, header.fURL);
  WriteTextField(output, header.fCopyright);
  WriteU32(output, header.fFileCount);
  WriteU32(output, header.fIndexStart);
  WriteU32(output, header.fDataStart);
  NSTolbrook::WriteFormatVersion(output, header.fVersion);
  WriteU32(output, header.fSplashOffset);
  WriteU32(output, header.fSplashSize);
}

CPackageHeader ReadPackageHeader(CMediaCursor& input) {
  CPackageHeader header;
  header.fTambraName = ReadTextField(input);
  header.fComment = ReadTextField(input);
  header.fURL = ReadTextField(input);
  header.fCopyright = ReadTextField(input);
  header.fFileCount = ReadU32(input);
  header.fIndexStart = ReadU32(input);
  header.fDataStart = ReadU32(input);
  header.fVersion = NSTolbrook::ReadFormatVersion(input);
  // What stands behind the version is only known for the versions up to the supported one.
  CheckPackageVersion(header.fVersion);
  header.fSplashOffset = ReadU32(input);
  header.fSplashSize = ReadU32(input);
  return header;
}

}  // namespace NSTambraPacking
