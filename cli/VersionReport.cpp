#include "cli/VersionReport.h"

#include <thread>

#include "Parts/TolbrookPackage/Core/Exception.h"
#include "Parts/TolbrookPackage/Core/FileSystem.h"

#include "codecs/LQXLibrary.h"
#include "filetypes/dwop/DWOPForm.h"
#include "filetypes/dwop/DWOPFormat.h"
#include "package/PackageFormat.h"

namespace NSTambraCli {

namespace {

std::string LoopText() {
  using NSTambraPacking::CLQXLibrary;
  try {
    if (CLQXLibrary::Find({}, NSTolbrook::ProgramFolder())) return "checked by the host's library";
  } catch (const NSMordel::XOpen& e) {
    return std::string("the host's library cannot be used: ") + e.Message();
  }
  return "checked for structure only (no sliced-loop library was found)";
}

const char* Compiler() {
#ifdef __clang__
  return __VERSION__;
#elif defined(__GNUC__)
  return "GCC " __VERSION__;
#else
  return "another compiler";
#endif
}

}  // namespace

std::string VersionReport() {
  using namespace NSTambraPacking;
  const bool isFast = FastestDWOPForm() == EDWOPForm::kAVX2;
  return "tambra " TAMBRA_VERSION "\nPackages      up to version " +
         kSupportedPackageVersion.Text() + "\nSamples       DWOP " + kDWOPVersion.Text() + " and " +
         kDWOPVersionWithFlag.Text() + ", by " + (isFast ? "AVX2" : "portable") + " code, on " +
         std::to_string(std::thread::hardware_concurrency()) + " processors\nSliced loops  " +
         LoopText() + "\nBuilt by      " + Compiler();
}

}  // namespace NSTambraCli
