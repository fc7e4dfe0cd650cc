#include "tests/reliability/CrashingDisk.h"

#include <algorithm>

namespace NSTest {

namespace {

/// The size below which a disk writes all or nothing.
constexpr std::size_t kSector = 512;

}  // namespace

void CCrashingDisk::ForEachImage(std::size_t samples, std::mt19937& random,
                                 const Check& check) const {
  Bytes flushed;
  std::size_t begin = 0;  // of what is not flushed
  for (std::size_t end = 0; end <= fOperations.size(); ++end) {
    const Unflushed unflushed = std::span(fOperations).subspan(begin, end - begin);
    check(flushed, end);
    Bytes all = flushed;
    for (const COperation& operation : unflushed) Apply(operation, all);
    check(all, end);
    for (std::size_t i = 0; !unflushed.empty() && i < samples; ++i) {
      for (const EModel model : {EModel::kOrdered, EModel::kReordered, EModel::kTorn}) {
        check(ImageOf(flushed, unflushed, model, random), end);
      }
    }
    if (end < fOperations.size() && fOperations[end].fKind == EKind::kFlush) {
      flushed = std::move(all);
      begin = end + 1;
    }
  }
}

CCrashingDisk::Bytes CCrashingDisk::ImageOf(Bytes image, Unflushed unflushed, EModel model,
                                            std::mt19937& random) {
  if (model == EModel::kOrdered) {
    const std::size_t kept = random() % unflushed.size();
    for (const COperation& operation : unflushed.first(kept)) Apply(operation, image);
    ApplyPart(unflushed[kept], image, random);
    return image;
  }
  for (const COperation& operation : unflushed) {
    const auto fate = random() % 3;
    if (fate == 0) Apply(operation, image);
    if (fate == 1 && model == EModel::kTorn) ApplyPart(operation, image, random);
  }
  return image;
}

void CCrashingDisk::Apply(const COperation& operation, Bytes& image) {
  if (operation.fKind == EKind::kResize) {
    image.resize(static_cast<std::size_t>(operation.fPosition));
  } else if (operation.fKind == EKind::kWrite) {
    const auto position = static_cast<std::size_t>(operation.fPosition);
    image.resize(std::max(image.size(), position + operation.fBytes.size()));
    std::ranges::copy(operation.fBytes, image.begin() + static_cast<std::ptrdiff_t>(position));
  }
}

/// The first bytes, or each sector or byte or not. A resize is never done by halves.
void CCrashingDisk::ApplyPart(const COperation& operation, Bytes& image, std::mt19937& random) {
  if (operation.fKind != EKind::kWrite) return;
  const Bytes& bytes = operation.fBytes;
  const auto apply = [&](std::size_t begin, std::size_t end) {
    Apply({EKind::kWrite,
           operation.fPosition + begin,
           {bytes.begin() + static_cast<std::ptrdiff_t>(begin),
            bytes.begin() + static_cast<std::ptrdiff_t>(end)}},
          image);
  };
  const auto way = random() % 3;
  if (way == 0) return apply(0, random() % (bytes.size() + 1));
  const std::size_t step = way == 1 ? kSector : 1;
  for (std::size_t begin = 0; begin < bytes.size();) {
    const std::size_t rest = step - (operation.fPosition + begin) % step;
    const std::size_t end = std::min(bytes.size(), begin + rest);
    if (random() % 2 == 0) apply(begin, end);
    begin = end;
  }
}

}  // namespace NSTest
