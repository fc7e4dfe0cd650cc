#include "Parts/TolbrookPackage/Core/Exception.h"

#include <algorithm>

namespace NSMordel::NSMordelDetails {

CExceptionBodyMixin::CExceptionBodyMixin(CContext context) : fContext(std::move(context)) {}

CExceptionBodyMixin::~CExceptionBodyMixin() = default;

const std::string* CExceptionBodyMixin::FindContext(std::string_view key) const noexcept {
  const auto found = std::find_if(fContext.begin(), fContext.end(),
                                  [key](const auto& entry) { return entry.first == key; });
  return found == fContext.end() ? nullptr : &found->second;
}

void CExceptionBodyMixin::AddContext(std::string key, std::string value) {
  if (FindContext(key) == nullptr) fContext.emplace_back(std::move(key), std::move(value));
}

CPlainException::CPlainException(std::string message, CContext context)
    : CExceptionBodyMixin(std::move(context)), fMessage(std::move(message)) {}

XTunneledError::XTunneledError()
    : CPlainException("a failure on its way through foreign code"),
      fFailure(std::current_exception()) {}

void XTunneledError::Rethrow() const {
  if (fFailure == nullptr) throw XInvariantCorrupt("no failure was captured");
  std::rethrow_exception(fFailure);
}

}  // namespace NSMordel::NSMordelDetails
