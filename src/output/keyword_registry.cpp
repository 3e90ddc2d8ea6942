#include "output/keyword_registry.h"

#include "output/file_keywords.h"
#include "output/loop_factories.h"

namespace ibis {
namespace {

template <class Handler>
struct KeywordEntry {
  IBISString key;
  Handler handler;
};

// One table for each kind of handler, made when it is first needed.
template <class Handler>
std::vector<KeywordEntry<Handler>>& table() {
  static std::vector<KeywordEntry<Handler>> entries;
  return entries;
}

template <class Handler>
bool add(const char* name, Handler handler) {
  table<Handler>().push_back({name, handler});
  return true;
}

template <class Handler>
Handler find(std::string_view name) {
  for (const KeywordEntry<Handler>& entry : table<Handler>()) {
    if (entry.key.view() == name) return entry.handler;
  }
  return nullptr;
}

// The whole vocabulary of the templates outside their loops; nothing reads the array itself.
[[maybe_unused]] const bool registered[] = {
    addLoopKeyword("forallmodels", forAllModels),
    addLoopKeyword("foreachcomponent", forEachComponent),
    addLoopKeyword("foreachdiffpin", forEachDiffPin),
    addLoopKeyword("foreachfilepin", forEachFilePin),
    addLoopKeyword("foreachgnd", forEachGnd),
    addLoopKeyword("foreachinput", forEachInput),
    addLoopKeyword("foreachio", forEachInputOutput),
    addLoopKeyword("foreachmodel", forEachModel),
    addLoopKeyword("foreachmodelselector", forEachModelSelector),
    addLoopKeyword("foreachoutput", forEachOutput),
    addLoopKeyword("foreachpin", forEachPin),
    addLoopKeyword("foreachpower", forEachPower),
    addLoopKeyword("foreachspicepin", forEachSpicePin),
    addLoopKeyword("foreachterminator", forEachTerminator),
    addLoopKeyword("foreachtristate", forEachThreeState),
    addLoopKeyword("foreachusermodelselector", forEachUserModelSelector),
    addLoopKeyword("foreachwaveform", forEachWaveform),

    addValueKeyword("buildpackagemodel", writePackageModel),
    addValueKeyword("componentname", writeComponentName),
    addValueKeyword("file", openFile),
    addValueKeyword("filepath", writeFilePath),
    addValueKeyword("ibiscopyright", writeCopyright),
    addValueKeyword("ibisdate", writeDate),
    addValueKeyword("ibisdisclaimer", writeDisclaimer),
    addValueKeyword("ibisfilename", writeFileName),
    addValueKeyword("ibisfilerev", writeFileRev),
    addValueKeyword("ibisnotes", writeNotes),
    addValueKeyword("ibissource", writeSource),
    addValueKeyword("ibisversion", writeVersion),
    addValueKeyword("manufacturer", writeManufacturer),
    addValueKeyword("packagemodel", writePackageModelName),
    addValueKeyword("rootdir", writeRootDirectory),
    addValueKeyword("spicecomponentname", writeSpiceComponentName),
    addValueKeyword("subcktname", writeSubcircuitName),

    addConditionKeyword("ifhasmodeltype", hasModelType),
    addConditionKeyword("ifhaspackagemodel", hasPackageModel),
};

}  // namespace

bool addValueKeyword(const char* name, ValueHandler handler) { return add(name, handler); }
bool addLoopKeyword(const char* name, LoopFactory factory) { return add(name, factory); }
bool addConditionKeyword(const char* name, ConditionHandler handler) { return add(name, handler); }

ValueHandler valueKeyword(std::string_view name) { return find<ValueHandler>(name); }
LoopFactory loopKeyword(std::string_view name) { return find<LoopFactory>(name); }
ConditionHandler conditionKeyword(std::string_view name) { return find<ConditionHandler>(name); }

}  // namespace ibis
