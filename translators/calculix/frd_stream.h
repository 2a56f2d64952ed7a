// The records of a CalculiX result file (.frd, long text form), block by block, checked as they pass.
// The layout is told in docs/calculix-results.md.
#ifndef FMDTOOLKIT_CALCULIX_FRD_STREAM_H
#define FMDTOOLKIT_CALCULIX_FRD_STREAM_H

#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "calculix/line_reader.h"

namespace calculix {

enum class FrdBlock { nodes, elements, result, end };

// What stands before the values of a result block.
struct ResultHead {
  std::string name;                     // DISP, STRESS, ...
  std::vector<std::string> components;  // those that are stored
  int analysis = 0;                     // 0 static, 2 frequency
  int mode = 0;
  double hertz = 0.0;
  long line = 0;  // of the 100CL record
};

constexpr int frequency_analysis = 2;

class FrdStream {
 public:
  explicit FrdStream(const std::string& path) : lines_(path) {}

  // Reads on to the next block; its records must have been read to their end.
  FrdBlock next_block();

  // The next record of the block; false at its end, where the number of entities is checked: node, element
  // and value records that begin with -1.
  bool next_record(std::string_view& record);

  // The current block, or what is known of the file.
  const ResultHead& result() const { return result_; }
  int declared_count() const { return declared_count_; }
  const std::string& title() const { return title_; }
  const std::string& program() const { return program_; }

  const LineReader& lines() const { return lines_; }
  [[noreturn]] void fail(const std::string& text) const { lines_.fail(text); }

  // Fields of a record; the name is for the message.
  int int_field(std::string_view record, std::size_t first, std::size_t last, const char* name) const;
  double real_field(std::string_view record, std::size_t first, std::size_t last, const char* name) const;

  // The reals behind the id of a node or value record.
  void read_reals(std::string_view record, double* values, int count) const;

 private:
  bool next_line(std::string_view& line);
  void read_user_text(std::string_view line);
  void read_parameter(std::string_view line);
  void begin_mesh_block(std::string_view line, const char* what);
  void read_result_head(std::string_view line);
  void read_components();

  LineReader lines_;
  std::string_view pending_;
  bool has_pending_ = false;
  bool has_header_ = false;
  bool has_user_text_ = false;
  const char* block_name_ = "";
  int declared_count_ = 0;
  int counted_ = 0;
  int parameter_mode_ = 0;  // from the 1PMODE record before a dataset; 0 none
  ResultHead result_;
  std::string title_;
  std::string program_;
};

}  // namespace calculix

#endif
