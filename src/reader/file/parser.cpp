#include "reader/file/parser.h"

#include "component/component_reader.h"
#include "component/model_selector.h"
#include "component/names/name_table.h"
#include "component/pin_resolution.h"
#include "host/diagnostics/messages.h"
#include "model/check_models.h"
#include "model/model_reader.h"
#include "package/package_reader.h"

namespace ibis {
namespace {

bool readVersion(IBISFile& file, const IBISRecord& record) {
  const IBISString text = keywordText(record);
  const VersionRow* row = findVersion(text);
  if (row == nullptr) {
    file.error(message::unknownVersion, record.line, text.str().c_str());
    return false;
  }
  file.data().version = row->id;
  if (!row->supported) file.error(message::versionNotSupported, record.line, row->text);
  return row->supported;
}

IBISString headerText(IBISFile& file, IBISRecords records, std::int32_t& index) {
  return file.data().strings.store(multiLineText(records, index));
}

// Stores one header keyword; false for a keyword that is none.
bool readHeaderKeyword(IBISFile& file, IBISRecords records, std::int32_t& index) {
  IBISFileData& data = file.data();
  const IBISRecord& record = recordAt(records, index);
  switch (record.keyword) {
    case keyword::dataLine:
      return true;  // text below a keyword of one line is lost
    case keyword::fileName:
      data.fileName = keywordText(record);
      return true;
    case keyword::fileRev:
      data.fileRev = keywordText(record);
      return true;
    case keyword::date:
      data.date = keywordText(record);
      return true;
    case keyword::source:
      data.source = headerText(file, records, index);
      return true;
    case keyword::notes:
      data.notes = headerText(file, records, index);
      return true;
    case keyword::disclaimer:
      data.disclaimer = headerText(file, records, index);
      return true;
    case keyword::copyright:
      data.copyright = headerText(file, records, index);
      return true;
    default:
      return false;
  }
}

// Without a good [IBIS Ver] only [Component] leads on to the sections.
bool parseHeader(IBISFile& file, IBISRecords records, std::int32_t& index) {
  bool versionRead = false;
  const auto count = static_cast<std::int32_t>(records.size());
  for (; index < count; ++index) {
    const IBISRecord& record = recordAt(records, index);
    if (record.keyword == keyword::component) return true;
    if (record.keyword == keyword::ibisVer) {
      versionRead = readVersion(file, record);
      if (!versionRead) return false;
    } else if (!readHeaderKeyword(file, records, index)) {
      return versionRead;
    }
  }
  return versionRead;
}

void readComponentSection(IBISFile& file, IBISRecords records, std::int32_t& index) {
  auto component = std::make_unique<IBISComponent>();
  readComponent(*component, records, index, *file.data().nameTable, file);
  if (component->nameTable) component->nameTable->forgetNames();
  file.data().components.push_back(std::move(component));
}

void readModel(IBISFile& file, IBISRecords records, std::int32_t& index) {
  auto model = std::make_unique<IBISModel>();
  readModelSection(*model, records, index, *file.data().nameTable, file);
  file.data().models.push_back(std::move(model));
}

void readPackageSection(IBISFile& file, IBISRecords records, std::int32_t& index) {
  auto model = std::make_unique<IBISPackageModel>();
  readPackageModel(*model, records, index, file);
  file.data().packageModels.push_back(std::move(model));
}

void readSelector(IBISFile& file, IBISRecords records, std::int32_t& index) {
  readModelSelector(file.data(), records, index);
}

using SectionReader = void (*)(IBISFile&, IBISRecords, std::int32_t&);

// keyword, reader of the section that it begins
struct SectionRow {
  std::int32_t keyword;
  SectionReader read;
};

constexpr SectionRow sections[] = {
    {keyword::component, readComponentSection},
    {keyword::modelSelector, readSelector},
    {keyword::model, readModel},
    {keyword::definePackageModel, readPackageSection},
};

SectionReader sectionReader(std::int32_t id) {
  for (const SectionRow& row : sections) {
    if (row.keyword == id) return row.read;
  }
  return nullptr;
}

void refuse(IBISFile& file, const IBISRecord& record) {
  const std::string name = keywordName(record.keyword).str();
  if (record.keyword == keyword::submodel || record.keyword == keyword::externalModel) {
    file.error(message::keywordNotSupported, record.line, name.c_str());
  } else {
    file.error(message::keywordNotExpected, record.line, name.c_str());
  }
}

// False at what ends the file ahead of the last record.
bool parseSections(IBISFile& file, IBISRecords records, std::int32_t& index) {
  const auto count = static_cast<std::int32_t>(records.size());
  for (; index < count; ++index) {
    const IBISRecord& record = recordAt(records, index);
    if (record.keyword == keyword::end) return false;
    const SectionReader read = sectionReader(record.keyword);
    if (read == nullptr) {
      refuse(file, record);
      return false;
    }
    read(file, records, index);
  }
  return true;
}

std::vector<IBISModel*> allModels(const IBISFile& file) {
  std::vector<IBISModel*> models;
  for (const auto& model : file.data().models) models.push_back(model.get());
  return models;
}

}  // namespace

void parseFile(IBISFile& file, IBISRecords records, std::int32_t& index) {
  if (parseHeader(file, records, index)) parseSections(file, records, index);
}

void parseFile(IBISFile& file, IBISScanner& scanner) {
  std::int32_t index = 0;
  IBISRecords records = scanner.nextPiece();
  if (!parseHeader(file, records, index)) return;
  while (!records.empty() && parseSections(file, records, index)) {
    records = scanner.nextPiece();
    index = 0;
  }
}

void postParse(IBISFile& file, std::string_view componentName,
               std::span<const IBISString> pinFilter) {
  checkUserSelectors(file.data(), file);
  const ModelFinder models(file.data());
  const PinFilter filter(pinFilter);
  for (const auto& component : file.data().components) {
    if (!componentName.empty() && component->name != componentName) continue;
    prepareComponent(*component, models, filter, file);
    if (componentName.empty()) continue;
    checkModels(component->models, file);
    return;
  }
  if (componentName.empty()) checkModels(allModels(file), file);
}

}  // namespace ibis
