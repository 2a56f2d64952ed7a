#include "database.h"

#include <stdexcept>

#include "fmdtoolkit/extensions.h"

namespace fmdtool {

namespace fs = std::filesystem;

namespace {

constexpr std::size_t row_bytes = 256;

[[noreturn]] void refuse(const std::string& text) {
  throw std::runtime_error(text);
}

void add_body(int nodes, int modes, long long bytes, void* list) {
  auto& bodies = *static_cast<std::vector<StoredBody>*>(list);
  bodies.push_back({static_cast<int>(bodies.size()) + 1, {}, nodes, modes, bytes});
}

std::string numbers_of(const std::vector<StoredBody>& bodies) {
  constexpr std::size_t most = 10;
  std::string text;
  for (std::size_t i = 0; i < bodies.size() && i < most; ++i) {
    text += (i == 0 ? "" : ", ") + std::to_string(bodies[i].number);
  }
  return bodies.size() > most ? text + " and more" : text;
}

}  // namespace

Database::Database(fs::path path, std::string name) : path_(std::move(path)), name_(std::move(name)) {
  std::error_code error;
  if (!fs::exists(path_, error)) refuse(name_ + ": no such file");
  std::string text = path_.string();
  if (DB_CheckDBset(text.data()) != 0) refuse(name_ + ": expected a database, NAME.MASTER");
  if (FMDX_ListBodies(text.c_str(), add_body, &bodies_) < 0) {
    refuse(name_ + ": the database cannot be read; `fmdtool check` tells what is wrong");
  }
  for (StoredBody& body : bodies_) {
    char row[row_bytes] = {};
    if (DB_GetBodyInfo(text.data(), body.number, row) == 0 ||
        !parse_qualifiers(row, body.qualifiers).empty()) {
      refuse(place_of(body) + ": the qualifiers cannot be read");
    }
  }
}

std::string Database::place_of(const StoredBody& body) const {
  return name_ + ", body " + std::to_string(body.number);
}

std::vector<StoredBody> Database::chosen(const BodyChoice& choice) const {
  if (bodies_.empty()) refuse(name_ + ": the database holds no body");
  if (choice.number != 0) {
    if (choice.number > static_cast<int>(bodies_.size())) {
      refuse(name_ + ": expected a body from 1 to " + std::to_string(bodies_.size()) + ", found " +
             std::to_string(choice.number));
    }
    return {bodies_[static_cast<std::size_t>(choice.number) - 1]};
  }
  if (choice.select.empty()) return bodies_;
  Qualifiers wanted;
  const std::string error = parse_qualifiers(choice.select, wanted);
  if (!error.empty()) refuse(error);
  std::vector<StoredBody> found;
  for (const StoredBody& body : bodies_) {
    if (wanted.found_in(body.qualifiers)) found.push_back(body);
  }
  if (found.empty()) refuse(name_ + ": no body with " + as_text(wanted));
  return found;
}

StoredBody Database::chosen_one(const BodyChoice& choice) const {
  const std::vector<StoredBody> found = chosen(choice);
  if (found.size() > 1) {
    refuse(name_ + ": expected one body, found " + std::to_string(found.size()) + " (" + numbers_of(found) +
           "); say which with --body");
  }
  return found[0];
}

FmdBody* Database::read(const StoredBody& body) const {
  std::string text = path_.string();
  FmdBody* const read = FMD_CreateFromFMD(text.data(), body.number);
  if (read == nullptr) refuse(place_of(body) + ": cannot be read");
  return read;
}

}  // namespace fmdtool
