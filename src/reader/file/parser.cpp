#include "reader/file/parser.h"

#include "component/component_reader.h"
#include "component/model_selector.h"
#include "component/names/name_table.h"
#include "component/pin_resolution.h"
#include "host/diagnostics/messages.h"
#include "model/check_models.h"
#include "model/model_reader.h"
#include "package/package_reader.h"
#include "reader/text/name_index.h"

namespace ibis {
namespace {

bool readVersion(IBISFile& file, const IBISRecord& record, const ReadOptions& options) {
  const IBISString text = keywordText(record);
  const VersionRow* row = findVersion(text);
  if (row == nullptr) {
    if (options.keepGoing) {
      file.warning(message::unknownVersion, record.line, text.str().c_str());
    } else {
      file.error(message::unknownVersion, record.line, text.str().c_str());
    }
    return options.keepGoing;
  }
  file.data().version = row->id;
  if (row->supported) return true;
  if (options.newerVersions && row->id != 0) {
    file.warning(message::versionReadAsOlder, record.line, row->text);
    return true;
  }
  file.error(message::versionNotSupported, record.line, row->text);
  return false;
}

IBISString headerText(IBISFile& file, IBISRecords records, std::int32_t& index) {
  return file.data().strings.store(multiLineText(records, index));
}

// Stores one header keyword; false for any other keyword.
bool readHeaderKeyword(IBISFile& file, IBISRecords records, std::int32_t& index) {
  IBISFileData& data = file.data();
  const IBISRecord& record = recordAt(records, index);
  switch (record.keyword) {
    case keyword::dataLine:
      return true;  // lines after a keyword of one line are lost
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
bool parseHeader(IBISFile& file, IBISRecords records, std::int32_t& index,
                 const ReadOptions& options) {
  bool versionRead = false;
  const auto count = static_cast<std::int32_t>(records.size());
  for (; index < count; ++index) {
    const IBISRecord& record = recordAt(records, index);
    if (record.keyword == keyword::component) return true;
    if (record.keyword == keyword::ibisVer) {
      versionRead = readVersion(file, record, options);
      if (!versionRead) return false;
    } else if (!readHeaderKeyword(file, records, index)) {
      return versionRead || options.keepGoing;
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

void skipSection(IBISRecords records, std::int32_t& index) {
  const auto count = static_cast<std::int32_t>(records.size());
  while (index + 1 < count && !endsSection(recordAt(records, index + 1).keyword)) ++index;
}

// False if something ends the file before the last record.
bool parseSections(IBISFile& file, IBISRecords records, std::int32_t& index,
                   const ReadOptions& options) {
  const auto count = static_cast<std::int32_t>(records.size());
  for (; index < count; ++index) {
    const IBISRecord& record = recordAt(records, index);
    if (record.keyword == keyword::end) return false;
    if (const SectionReader read = sectionReader(record.keyword)) {
      read(file, records, index);
      continue;
    }
    refuse(file, record);
    if (!options.keepGoing) return false;
    skipSection(records, index);
  }
  return true;
}

// Reports each keyword once, at its first line.
void reportPassed(IBISFile& file, std::span<const PassedKeyword> passed) {
  NameMap<ExactCase, std::int32_t> told;
  for (const PassedKeyword& each : passed) {
    if (!told.add(each.keyword->name, each.line)) continue;
    file.warning(message::keywordPassedOver, each.line, std::string(each.keyword->name).c_str());
  }
}

std::vector<IBISModel*> allModels(const IBISFile& file) {
  std::vector<IBISModel*> models;
  for (const auto& model : file.data().models) models.push_back(model.get());
  return models;
}

}  // namespace

void parseFile(IBISFile& file, IBISRecords records, std::int32_t& index) {
  const ReadOptions asALoad;
  if (parseHeader(file, records, index, asALoad)) parseSections(file, records, index, asALoad);
}

void parseFile(IBISFile& file, IBISScanner& scanner, const ReadOptions& options) {
  std::int32_t index = 0;
  IBISRecords records = scanner.nextPiece();
  if (!parseHeader(file, records, index, options)) return;
  if (options.keepGoing) file.tolerateErrors();
  while (!records.empty() && parseSections(file, records, index, options)) {
    records = scanner.nextPiece();
    index = 0;
  }
  reportPassed(file, scanner.passedKeywords());
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
