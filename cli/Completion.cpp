#include "cli/Completion.h"

#include <algorithm>
#include <cstdlib>
#include <set>

#include "Parts/TolbrookPackage/Core/Exception.h"
#include "Parts/TolbrookPackage/Core/Text.h"

#include "cli/ArgumentWalk.h"
#include "cli/ConsoleAlertPresenter.h"
#include "cli/ExitStatus.h"
#include "cli/PackageFile.h"

namespace NSTambraCli {

namespace {

using EFiles = CCompletion::EFiles;

/// Collects the words that begin with what was typed.
class CCandidates {
 public:
  CCandidates(CCompletion& completion, std::string typed, std::string lead = {})
      : fCompletion(completion), fTyped(std::move(typed)), fLead(std::move(lead)) {}

  const std::string& Typed() const { return fTyped; }
  void Files(EFiles files) { fCompletion.fFiles = files; }
  void Add(const std::string& word, const std::string& description = {}) {
    if (word.starts_with(fTyped)) fCompletion.fWords.emplace_back(fLead + word, description);
  }

 private:
  CCompletion& fCompletion;
  std::string fTyped;
  std::string fLead;  ///< what the shell's word begins with: "--option="
};

void AddCommands(CCandidates& candidates, const CLI::App& command) {
  for (const CLI::App* const child : CommandsOf(command)) {
    candidates.Add(child->get_name(), child->get_description());
  }
}

/// Paths of a package's entries, a component at a time as files are completed.
void AddEntries(CCandidates& candidates, const std::string& file) {
  const auto entries = OpenPackage(file).fReader.ReadEntries();
  std::set<std::string> seen;
  for (const auto& entry : entries) {
    const std::string path = NSTolbrook::Utf8FromText(entry->Path());
    // A name that could pass for another line of the answer is not offered.
    if (!path.starts_with(candidates.Typed()) || Printable(entry->Path()) != path) continue;
    const std::size_t slash = path.find('/', candidates.Typed().size());
    const std::string word = slash == std::string::npos ? path : path.substr(0, slash + 1);
    if (seen.insert(word).second) candidates.Add(word);
  }
}

/// The commands along the words of "tambra help".
void AddHelpTopics(CCandidates& candidates, const CProgram& program,
                   const std::vector<std::string>& words) {
  CArgumentWalk walk(program.App());
  for (const std::string& word : words) walk.Take(word);
  AddCommands(candidates, walk.Command());
}

void AddValues(CCandidates candidates, const CProgram& program, const CLI::Option& option,
               const CArgumentWalk& walk) {
  const std::vector<std::string> choices = Choices(option);
  for (const std::string& choice : choices) candidates.Add(choice);
  const std::string name = ValueName(option);
  if (name == kFileValue) candidates.Files(EFiles::kAny);
  if (name == kFolderValue) candidates.Files(EFiles::kFolders);
  if (name == kPackageValue) candidates.Files(EFiles::kPackages);
  if (name == kEntryValue) AddEntries(candidates, walk.Positionals().front());
  if (name == kCommandValue) AddHelpTopics(candidates, program, walk.Positionals());
  if (name == kAnswerValue) {
    for (const std::string& answer : PossibleAnswers(NSTambraPacking::CTextResources())) {
      candidates.Add(answer);
    }
  }
}

void AddOptions(CCandidates& candidates, const CArgumentWalk& walk) {
  for (const CLI::Option* const option : OptionsOf(walk.Command())) {
    if (walk.Has(*option) && option->get_items_expected_max() <= 1) continue;
    candidates.Add(NamesOf(*option).front(), option->get_description());
  }
}

}  // namespace

CCompletion Complete(const CProgram& program, std::span<const std::string> words) {
  CCompletion completion;
  CArgumentWalk walk(program.App());
  for (const std::string& word : words.first(words.size() - 1)) walk.Take(word);
  const std::string& typed = words.back();
  CCandidates candidates(completion, typed);
  const bool isOption = !walk.OptionsEnded() && typed.starts_with('-');
  const std::size_t equals = typed.find('=');
  if (walk.Open() != nullptr) {
    AddValues(candidates, program, *walk.Open(), walk);
  } else if (isOption && equals != std::string::npos) {
    const CLI::Option* const option = walk.Find(typed.substr(0, equals));
    if (option == nullptr) return completion;
    AddValues({completion, typed.substr(equals + 1), typed.substr(0, equals + 1)}, program, *option,
              walk);
  } else if (isOption) {
    AddOptions(candidates, walk);
  } else if (!CommandsOf(walk.Command()).empty()) {
    AddCommands(candidates, walk.Command());
  } else if (const CLI::Option* const next = walk.NextPositional()) {
    AddValues(candidates, program, *next, walk);
  } else {
    AddOptions(candidates, walk);
  }
  return completion;
}

int PrintCompletion(const CConsole& console, const CProgram& program,
                    std::span<const std::string> arguments) {
  std::vector<std::string> words(arguments.begin(), arguments.end());
  const bool isTyped = !words.empty() && words.front() == "bash";
  if (words.size() < 2) return kExitUsage;
  words.erase(words.begin());
  if (isTyped) std::ranges::transform(words, words.begin(), Unquoted);
  CCompletion completion;
  try {
    completion = Complete(program, words);
  } catch (const NSMordel::CExceptionBodyMixin&) {
    // A line that is wrong, or a package that cannot be read, has no completion; the run tells why.
    return kExitFailed;
  }
  switch (completion.fFiles) {
    case EFiles::kNone:
      console.Print("words");
      break;
    case EFiles::kAny:
      console.Print("files");
      break;
    case EFiles::kFolders:
      console.Print("folders");
      break;
    case EFiles::kPackages:
      console.Print("packages");
      break;
  }
  for (const auto& [word, description] : completion.fWords) {
    console.Print(word + "\t" + description);
  }
  return kExitDone;
}

std::string Unquoted(const std::string& typed) {
  std::string text;
  char quote = '\0';
  for (std::size_t index = 0; index < typed.size(); ++index) {
    const char character = typed[index];
    const bool isEscape = character == '\\' && quote != '\'' && index + 1 < typed.size();
    if (isEscape) {
      text += typed[++index];
    } else if (character == quote) {
      quote = '\0';
    } else if (quote == '\0' && (character == '"' || character == '\'')) {
      quote = character;
    } else {
      text += character;
    }
  }
  const char* const home = std::getenv("HOME");
  if (home != nullptr && typed.starts_with("~/")) text.replace(0, 1, home);
  return text;
}

}  // namespace NSTambraCli
