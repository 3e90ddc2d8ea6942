#include "spice_bench.h"

#include <fstream>
#include <iterator>
#include <sstream>

#include "simulator/netlist_writer.h"

namespace ibis::cli {
namespace {

std::string readAll(const std::string& name) {
  std::ifstream in(name, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

// A line of a frequency, then of real and imaginary part of each vector.
std::vector<std::complex<double>> valuesOf(const std::string& line) {
  std::istringstream words(line);
  double frequency = 0.0;
  words >> frequency;
  std::vector<std::complex<double>> values;
  for (double real = 0.0, imaginary = 0.0; words >> real >> imaginary;) {
    values.emplace_back(real, imaginary);
  }
  return values;
}

std::string tableName(const TemporaryFolder& folder, std::size_t i) {
  return folder.path() + "/ac" + std::to_string(i);
}

}  // namespace

ExportedText exportText(const std::string& ibis, ExportRequest wanted) {
  const TemporaryFolder folder;
  wanted.source = folder.path() + "/source.ibs";
  wanted.folder = folder.path();
  std::ofstream(wanted.source) << ibis;
  ExportedText exported{exportFile(wanted), {}};
  if (!exported.result.files.empty()) exported.text = readAll(exported.result.files[0]);
  return exported;
}

std::string modelsOf(const std::string& ibis, const std::string& corner) {
  ExportRequest wanted;
  wanted.allModels = true;
  wanted.corners.push_back(corner);
  return exportText(ibis, std::move(wanted)).text;
}

RawPlot runDeck(const std::string& deck) {
  const TemporaryFolder folder;
  return runNgspice(folder, deck + ".end\n");
}

std::vector<std::vector<std::complex<double>>> runAc(const std::string& deck,
                                                     const std::vector<double>& frequencies,
                                                     const std::string& vectors) {
  const TemporaryFolder folder;
  std::ostringstream text;
  text << deck << ".save " << vectors << "\n.op\n.control\n"
       << "set numdgt=15\nset wr_singlescale\n";
  for (std::size_t i = 0; i < frequencies.size(); ++i) {
    const std::string f = spiceNumber(frequencies[i]);
    text << "ac lin 1 " << f << ' ' << f << '\n';
    text << "wrdata " << tableName(folder, i) << ' ' << vectors << '\n';
  }
  text << ".endc\n.end\n";
  runNgspice(folder, text.str());
  std::vector<std::vector<std::complex<double>>> rows;
  for (std::size_t i = 0; i < frequencies.size(); ++i) {
    rows.push_back(valuesOf(readAll(tableName(folder, i))));
  }
  return rows;
}

}  // namespace ibis::cli
