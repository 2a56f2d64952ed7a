#include "kdcdb/links.h"

#include <algorithm>

#include "kdcdb/paths.h"
#include "kdcdb/store.h"

namespace kdcdb {

namespace {

constexpr std::int64_t kWordsAtOnce = 65536;

// What "dblocate" asks for.
struct Location {
  std::string logical;
  Selection selection;
  std::vector<Entry> conversions;
  bool copy = false;
};

Status read_location(const Command& command, Location& location) {
  if (command.size() < 4 || command[1].name != "logical" || !command[1].has_value) return kBadCommand;
  location.logical = in_small_letters(command[1].value);
  const Status status = read_selection(command, 2, location.selection);
  if (status != kOk) return status;
  for (std::size_t i = 4; i < command.size(); ++i) {
    const Item& item = command[i];
    if (is_group(item, "convert")) {
      location.conversions = item.group;
    } else if (item.name == "copy" && !item.has_group && !item.has_value) {
      location.copy = true;
    } else {
      return kBadCommand;
    }
  }
  return kOk;
}

// "name=name" keeps what is there, "name=number" sets it.
Status convert(const Entry& entry, Link& link) {
  if (!entry.has_value) return kBadCommand;
  if (in_small_letters(entry.value) == entry.name) return kOk;
  std::int32_t value = 0;
  if (!parse_integer(entry.value, value)) return kBadCommand;
  if (entry.name == "highqual") {
    link.highqual = value;
    return kOk;
  }
  const int number = qualifier_number(entry.name);
  if (number < 0) return kBadCommand;
  link.qualifiers.numbers[static_cast<std::size_t>(number)] = value;
  return kOk;
}

void add_stored(const std::shared_ptr<const StoredFile>& stored, const Conditions& conditions,
                std::vector<Link>& found) {
  for (std::size_t i = 0; i < stored->entries().size(); ++i) {
    const Qualifiers& qualifiers = stored->entries()[i].qualifiers;
    if (!conditions.hold(qualifiers, 0)) continue;
    Link link;
    link.qualifiers = qualifiers;
    link.block = std::make_shared<StoredBlock>(stored, i);
    found.push_back(std::move(link));
  }
}

void add_scratch(const std::string& base, const Conditions& conditions, std::vector<Link>& found) {
  const Store& state = store();
  const auto blocks = state.scratch.find(base);
  if (blocks == state.scratch.end()) return;
  for (const auto& block : blocks->second) {
    if (!conditions.hold({}, block->highqual)) continue;
    Link link;
    link.is_scratch = true;
    link.highqual = block->highqual;
    link.block = block;
    found.push_back(std::move(link));
  }
}

// Links of the other database; the names that they go through must be assigned here too.
void add_links(const std::string& base, const Location& location, std::vector<Link>& found) {
  Store& state = store();
  const auto other = state.databases.find(base);
  if (other == state.databases.end() || base == state.base) return;
  const DatabaseState& here = state.databases[state.base];
  for (const Link& link : other->second.links) {
    if (link.is_scratch != location.selection.is_scratch() || !here.is_awake(link)) continue;
    if (location.selection.conditions.hold(link.qualifiers, link.highqual)) found.push_back(link);
  }
}

// From the registry where it lives into that of the open database; nothing is moved on disk.
Status take_over(const Link& link) {
  Store& state = store();
  ScratchBlocks& here = state.scratch[state.base];
  here.reserve(here.size() + 1);
  for (auto& [base, blocks] : state.scratch) {
    const auto found = std::find(blocks.begin(), blocks.end(), link.block);
    if (found == blocks.end() || base == state.base) continue;
    const bool taken = std::any_of(here.begin(), here.end(),
                                   [&](const auto& block) { return block->highqual == link.highqual; });
    if (taken) return kExists;
    (*found)->highqual = link.highqual;
    here.push_back(std::move(*found));
    blocks.erase(found);
    return kOk;
  }
  return kOk;
}

// Word by word, so that positions that were saved stay good.
Status store_again(const Link& link) {
  Datablock& from = *link.block;
  Status status = from.prepare();
  if (status != kOk) return status;
  const std::shared_ptr<NewBlock> to = store().master->writer().create_block(link.qualifiers);
  status = to->clear();
  std::vector<std::int32_t> words(static_cast<std::size_t>(std::min(from.words, kWordsAtOnce)));
  for (std::int64_t at = 0; at < from.words && status == kOk; at += kWordsAtOnce) {
    const std::int64_t count = std::min(kWordsAtOnce, from.words - at);
    status = from.read(at, words.data(), count);
    if (status == kOk) status = to->append(words.data(), count);
  }
  if (status != kOk) return status;
  to->record_ends = from.record_ends;
  to->trailer = from.trailer;
  to->end_writing();
  return to->is_complete() ? kOk : kNoSpace;
}

}  // namespace

bool DatabaseState::is_awake(const Link& link) const {
  return std::all_of(link.logical_names.begin(), link.logical_names.end(),
                     [&](const std::string& name) { return assignments.count(name) != 0; });
}

Status find_matches(const Selection& selection, std::vector<Link>& matches) {
  Store& state = store();
  if (selection.is_scratch()) {
    add_scratch(state.base, selection.conditions, matches);
  } else {
    std::shared_ptr<const StoredFile> stored;
    const Status status = state.open_stored(state.base + kMasterSuffix, stored);
    if (status != kOk) return status;
    add_stored(stored, selection.conditions, matches);
  }
  const DatabaseState& here = state.databases[state.base];
  for (const Link& link : here.links) {
    if (link.is_scratch != selection.is_scratch() || !here.is_awake(link)) continue;
    if (selection.conditions.hold(link.qualifiers, link.highqual)) matches.push_back(link);
  }
  return kOk;
}

Status run_assign(const Command& command) {
  if (command.size() != 2 || !command[1].has_value || command[1].value.empty()) return kBadCommand;
  Store& state = store();
  state.databases[state.base].assignments[command[1].name] = command[1].value;
  return kOk;
}

Status run_dblocate(const Command& command) {
  Location location;
  Status status = read_location(command, location);
  if (status != kOk) return status;
  Store& state = store();
  DatabaseState& here = state.databases[state.base];
  const auto assigned = here.assignments.find(location.logical);
  if (assigned == here.assignments.end()) return kNoFile;
  Path path;
  status = resolve_base(assigned->second.c_str(), path);
  if (status != kOk) return status;
  const std::string base = base_of_master(path.text());

  std::vector<Link> found;
  if (location.selection.is_scratch()) {
    add_scratch(base, location.selection.conditions, found);
  } else {
    std::shared_ptr<const StoredFile> stored;
    status = state.open_stored(path.text(), stored);
    if (status != kOk) return status;
    add_stored(stored, location.selection.conditions, found);
  }
  add_links(base, location, found);
  for (Link& link : found) {
    link.logical_names.push_back(location.logical);
    for (const Entry& entry : location.conversions) {
      status = convert(entry, link);
      if (status != kOk) return status;
    }
  }
  if (!location.copy) {
    here.links.insert(here.links.end(), found.begin(), found.end());
    return kOk;
  }
  for (const Link& link : found) {
    status = link.is_scratch ? take_over(link) : store_again(link);
    if (status != kOk) return status;
  }
  return kOk;
}

Status run_undblocate(const Command& command) {
  if (command.size() != 2 || command[1].name != "logical" || !command[1].has_value) return kBadCommand;
  const std::string logical = in_small_letters(command[1].value);
  Store& state = store();
  std::vector<Link>& links = state.databases[state.base].links;
  const auto dropped = std::remove_if(links.begin(), links.end(), [&](const Link& link) {
    return logical == "*" || link.logical_names.back() == logical;
  });
  links.erase(dropped, links.end());
  return kOk;
}

void ForgetLogical(const char* logical) {
  Store& state = store();
  const auto here = state.databases.find(state.base);
  if (here == state.databases.end()) return;
  auto& [assignments, links] = here->second;
  const auto is_meant = [&](const std::string& name) { return name == logical; };
  const auto dropped = std::remove_if(links.begin(), links.end(), [&](const Link& link) {
    return std::any_of(link.logical_names.begin(), link.logical_names.end(), is_meant);
  });
  links.erase(dropped, links.end());
  const auto assigned = std::find_if(assignments.begin(), assignments.end(),
                                     [&](const auto& assignment) { return is_meant(assignment.first); });
  if (assigned != assignments.end()) assignments.erase(assigned);
}

}  // namespace kdcdb
