#include "gui/package/PackageListing.h"

#include <QCollator>
#include <QLocale>
#include <algorithm>
#include <iterator>
#include <numeric>
#include <set>

#include "Parts/TolbrookPackage/Core/Text.h"

#include "app/FileTypeNames.h"
#include "app/PackageTextNumbers.h"
#include "app/PrintableText.h"
#include "gui/QtText.h"

namespace NSTambraGui {

namespace {

using Node = CPackageListing::Node;

constexpr int kGreatestDepth = CPackageListing::kGreatestDepth;
// UTF-16 units
constexpr std::size_t kLongestShownText = 4000;
constexpr std::size_t kLongestShownName = 500;

/// Of a file below the last folder that is shown, the rest of its path.
QString ShownName(const NSTambraPacking::CEntryTree& tree, Node node, int depth) {
  std::u16string name = tree.Name(node);
  if (depth > kGreatestDepth + 1) {
    auto components = tree.Components(node);
    components.erase(components.begin(), components.begin() + kGreatestDepth);
    name = NSTambraPacking::JoinComponents(components);
  }
  if (name.size() > kLongestShownName) name = name.substr(0, kLongestShownName) + u"…";
  return ToQt(NSTambraPacking::PrintableText(name));
}

/// Names, parents and what the filter looks at.
void FillTree(CPackageListing& listing, const std::function<void()>& checkStop) {
  const NSTambraPacking::CEntryTree& tree = listing.fContents->Tree();
  const Node count = tree.NodeCount();
  std::vector<int> depths(count);
  listing.fNames.resize(count);
  listing.fFolded.resize(count);
  listing.fShownParents.resize(count);
  listing.fIsShown.resize(count, true);
  for (Node node = 1; node < count; ++node) {
    if (node % 256 == 0) checkStop();
    const Node parent = tree.Parent(node);
    depths[node] = depths[parent] + 1;
    listing.fShownParents[node] = parent;
    listing.fIsShown[node] = depths[node] <= kGreatestDepth || !listing.IsFolder(node);
    if (depths[node] > kGreatestDepth + 1) {
      listing.fShownParents[node] = listing.fShownParents[parent];
    }
    if (listing.fIsShown[node]) listing.fNames[node] = ShownName(tree, node, depths[node]);
    if (!listing.IsFolder(node)) listing.fFolded[node] = NSTolbrook::ComparisonKey(tree.Path(node));
  }
}

void RankNames(CPackageListing& listing) {
  QCollator collator;
  collator.setNumericMode(true);
  collator.setCaseSensitivity(Qt::CaseInsensitive);
  std::vector<QCollatorSortKey> keys;
  keys.reserve(listing.fNames.size());
  for (const QString& name : listing.fNames) keys.push_back(collator.sortKey(name));
  std::vector<Node> order(listing.fNames.size());
  std::iota(order.begin(), order.end(), Node{0});
  std::stable_sort(order.begin(), order.end(),
                   [&keys](Node a, Node b) { return keys[a].compare(keys[b]) < 0; });
  listing.fRanks.resize(order.size());
  for (std::uint32_t rank = 0; rank < order.size(); ++rank) listing.fRanks[order[rank]] = rank;
}

void RankTypes(CPackageListing& listing) {
  std::set<QString> names;
  for (const auto& [code, name] : listing.fTypeNames) names.insert(name);
  std::map<std::int32_t, std::uint32_t> ranks;
  for (const auto& [code, name] : listing.fTypeNames) {
    ranks[code] = static_cast<std::uint32_t>(std::distance(names.begin(), names.find(name)));
  }
  listing.fTypeRanks.resize(listing.fNames.size());
  for (Node node = 0; node < listing.fTypeRanks.size(); ++node) {
    if (!listing.IsFolder(node)) listing.fTypeRanks[node] = ranks.at(listing.TypeCode(node));
  }
}

}  // namespace

const QString& CPackageListing::TypeName(Node node) const {
  const auto& entry = fContents->EntryAt(node);
  return entry == nullptr ? fFolderName : fTypeNames.at(entry->TypeCode());
}

std::shared_ptr<const CPackageListing> ListPackage(const NSTambraPacking::CTextResources& texts,
                                                   const NSTolbrook::NativePath& path,
                                                   const std::function<void()>& checkStop) {
  const auto listing = std::make_shared<CPackageListing>();
  listing->fContents = std::make_unique<const NSTambraPacking::CPackageContents>(path);
  checkStop();
  for (const auto& entry : listing->fContents->Entries()) {
    QString& name = listing->fTypeNames[entry->TypeCode()];
    if (name.isEmpty()) name = ToQt(NSTambraPacking::EntryTypeName(texts, entry->TypeCode()));
  }
  listing->fFolderName = ToQt(texts.Text(NSTambraPacking::kPackageFolder));
  FillTree(*listing, checkStop);
  checkStop();
  RankNames(*listing);
  RankTypes(*listing);
  return listing;
}

QString SizeText(std::uint64_t bytes) {
  return QLocale().formattedDataSize(static_cast<qint64>(bytes), 1, QLocale::DataSizeSIFormat);
}

QString ShownText(std::u16string_view text) {
  const bool isCut = text.size() > kLongestShownText;
  QStringList lines;
  for (const std::u16string& line :
       NSTambraPacking::PrintableTextLines(text.substr(0, kLongestShownText))) {
    lines.append(ToQt(line));
  }
  return lines.join('\n') + (isCut ? QStringLiteral("…") : QString());
}

}  // namespace NSTambraGui
