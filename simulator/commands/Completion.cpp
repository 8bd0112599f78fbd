// SPDX-License-Identifier: Apache-2.0
#include "commands/Completion.h"

#include <algorithm>

#include "commands/WordReader.h"
#include "peers/Names.h"

namespace simulator {
namespace {

std::string_view lastWord(std::string_view line) {
  const std::size_t blank = line.find_last_of(" \t");
  return blank == std::string_view::npos ? line : line.substr(blank + 1);
}

// Whether a command follows these words.
bool isCommandNext(std::string_view words) {
  WordReader reader(words);
  while (reader.takeIf("repeat")) {
    if (reader.done()) {
      return false;  // the number
    }
    reader.take();
  }
  reader.takeIf("help");
  return reader.done();
}

std::vector<std::string_view> commandNames(const Commands& commands) {
  std::vector<std::string_view> names;
  for (const Commands::Entry& entry : commands.entries()) {
    names.emplace_back(entry.name);
  }
  return names;
}

std::vector<std::string_view> rpcsAndFeatures() {
  std::vector<std::string_view> names = namesOf(features());
  names.insert(names.end(), robotRpcs().begin(), robotRpcs().end());
  names.insert(names.end(), displayRpcs().begin(), displayRpcs().end());
  names.emplace_back("any");
  return names;
}

}  // namespace

Completion complete(const Commands& commands, std::string_view line) {
  Completion completion{lastWord(line), {}};
  const std::string_view before = line.substr(0, line.size() - completion.word.size());
  const auto names = isCommandNext(before) ? commandNames(commands) : rpcsAndFeatures();
  std::copy_if(names.begin(), names.end(), std::back_inserter(completion.candidates),
               [&completion](std::string_view name) {
                 return name.substr(0, completion.word.size()) == completion.word;
               });
  std::sort(completion.candidates.begin(), completion.candidates.end());
  return completion;
}

std::string_view commonRest(const Completion& completion) {
  if (completion.candidates.empty()) {
    return {};
  }
  // In order, the first and the last one differ most.
  const std::string_view first = completion.candidates.front();
  const std::string_view last = completion.candidates.back();
  std::size_t common = completion.word.size();
  while (common < std::min(first.size(), last.size()) && first[common] == last[common]) {
    ++common;
  }
  return first.substr(completion.word.size(), common - completion.word.size());
}

}  // namespace simulator
