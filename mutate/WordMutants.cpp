// The device's words, lines behind features, and the lines of PostScript that mean something.

#include "FilterFrame/Source/PostScriptLines.h"
#include "engine/CommandTable.h"
#include "modules/perfectbind/PerfectBind.h"
#include "modules/quality/Quality.h"
#include "modules/specialpages/SpecialPages.h"
#include "mutate/TableMutants.h"

namespace {

void AddTexts(TableMutants& mutants, const std::string& table, std::span<const char* const> texts) {
  for (const char* const& text : texts) AddBreak(mutants, table + " " + text, text);
}

// A text in place, by its last letter.
template <std::size_t Size>
void AddLetter(TableMutants& mutants, const std::string& name, const char (&field)[Size]) {
  const std::string_view text(field);
  if (!text.empty()) AddChange(mutants, name, field[text.size() - 1], '?');
}

void AddFeatureLines(TableMutants& mutants) {
  const auto& table = FeaturePPDKeyNameandMarkedValuetoPJLCommand;
  for (const FeatureLine& row : std::span(table).first(table.size() - 1)) {
    const std::string name = std::string("feature ") + row.keyword + " " + row.choice;
    AddLetter(mutants, name + " keyword", row.keyword);
    AddLetter(mutants, name + " choice", row.choice);
    AddLetter(mutants, name + " line", row.line);
  }
  // Which row stands last matters: it is never found.
  AddExchange(mutants, "feature last rows", table[table.size() - 2], table[table.size() - 1]);
  for (const PPDKeyDefault* row = PPDKeyArray; row->keyword != nullptr; row++) {
    AddBreak(mutants, std::string("default ") + row->keyword, row->keyword);
    AddBreak(mutants, std::string("default choice ") + row->keyword, row->choice);
    if (row[1].keyword != nullptr)
      AddExchange(mutants, std::string("default behind the next ") + row->keyword, row[0], row[1]);
  }
}

void AddTokens(TableMutants& mutants) {
  for (const PostScriptToken& token : kPostScriptTokens) {
    const std::string name = "token " + std::string(token.line);
    AddChange(mutants, name + " line", token.line, token.line.substr(0, token.line.size() - 1));
    AddChange(mutants, name + " endsPage", token.endsPage, !token.endsPage);
    if (token.endsPage) AddChange(mutants, name + " logsPage", token.logsPage, !token.logsPage);
    AddChange(mutants, name + " pollsCancel", token.pollsCancel, !token.pollsCancel);
    // Nothing happens yet at a page's beginning.
    if (token.hookPlace == HookPlace::kNone || token.line == "bp") continue;
    AddChange(mutants, name + " hook", token.hookCode, token.hookCode + 100);
    AddChange(mutants, name + " place", token.hookPlace,
              token.hookPlace == HookPlace::kBefore ? HookPlace::kAfter : HookPlace::kBefore);
    AddChange(mutants, name + " onlyFirst", token.onlyFirst, !token.onlyFirst);
  }
}

}  // namespace

void AddWordMutants(TableMutants& mutants) {
  AddTexts(mutants, "cover", CoverTypeXPJLComm);
  AddTexts(mutants, "colour", MediaColorXPJLComm);
  AddTexts(mutants, "sides", SidesXPJLComm);
  for (const PBindWord& word : std::span(PerfectBindParam).first(kPBindWordCount)) {
    const std::string name = std::string("binding ") + word.ppdValue + " ";
    AddBreak(mutants, name + word.ppdValue, word.ppdValue);
    AddBreak(mutants, name + word.deviceWord, word.deviceWord);
  }
  for (const CtrlSym& symbol : ctrlSymTalbe)
    AddBreak(mutants, std::string("symbol ") + symbol.symbol, symbol.symbol);
  AddFeatureLines(mutants);
  AddTokens(mutants);
}
