#include "harness/harness.h"

namespace ibis::testing {
namespace {

// First keyword and number of records of each piece.
Texts piecesOf(std::string_view text, std::size_t fewestRecords = 1) {
  IBISScanner scanner(text, fewestRecords);
  Texts pieces;
  for (IBISRecords records = scanner.nextPiece(); !records.empty(); records = scanner.nextPiece()) {
    pieces.push_back(keywordName(records.front().keyword).str() + ' ' +
                     std::to_string(records.size()));
  }
  return pieces;
}

TEST(Pieces, EndAheadOfEachSectionButTheFirst) {
  EXPECT_EQ(piecesOf("[IBIS Ver] 4.2\n[Notes]\na\n[Component] C\n[Pin]\n1 a b\n"
                     "[Model Selector] S\nM x\n[Model] M\n[Ramp]\n[Model] N\n"
                     "[Define Package Model] P\n[End Package Model]\n[End]\n"),
            (Texts{"IBIS Ver 6", "Model Selector 2", "Model 2", "Model 1", "Define Package Model 2",
                   "End 1"}));
}

TEST(Pieces, HoldAsManyRecordsAsAreAskedFor) {
  const std::string text = "[Component] C\n[Model] M\n[Ramp]\n[Model] N\n[Model] O\n[Model] P\n";
  EXPECT_EQ(piecesOf(text, 3), (Texts{"Component 3", "Model 3"}));
  EXPECT_EQ(piecesOf(text, 4), (Texts{"Component 4", "Model 2"}));
  EXPECT_EQ(piecesOf(text, 100), Texts{"Component 6"});
}

TEST(Pieces, HoldOneRecordAtLeastWhereNoneIsAskedFor) {
  const std::string text = "[Component] C\n[Model] M\n[Ramp]\n[Model] N\n[End]\n";
  EXPECT_EQ(piecesOf(text, 0), (Texts{"Component 1", "Model 2", "Model 1", "End 1"}));
  EXPECT_EQ(piecesOf(text, 0), piecesOf(text, 1));
}

TEST(Pieces, GoOnOverEveryKeywordInModelData) {
  EXPECT_EQ(piecesOf("[Component] C\n[Define Package Model] P\n[Model Data]\n[Model] M\n[End]\n"
                     "[End Model Data]\n[Model] N\n"),
            (Texts{"Component 1", "Define Package Model 5", "Model 1"}));
  EXPECT_EQ(piecesOf("[Component] C\n[Model Data]\n[Model] M\n[Model] N\n"), Texts{"Component 4"});
}

TEST(Pieces, OfNoTextAreNone) {
  EXPECT_EQ(piecesOf(""), Texts());
  EXPECT_EQ(piecesOf("| nothing\n\n"), Texts());
}

TEST(Pieces, KeepLinesAndCommentCharacterOfTheWholeText) {
  const std::string text =
      "[Component] C | x\n[Comment Char] !_char\n[Model] M ! y\n\n[Model] N | z\n";
  IBISScanner scanner(text, 1);
  EXPECT_EQ(scanner.nextPiece().front().text(), " C ");
  const IBISRecord second = scanner.nextPiece().front();
  EXPECT_EQ(second.text(), " M ");
  EXPECT_EQ(second.line, 3);
  const IBISRecord third = scanner.nextPiece().front();
  EXPECT_EQ(third.text(), " N | z");
  EXPECT_EQ(third.line, 5);
  EXPECT_TRUE(scanner.nextPiece().empty());
}

// Sections, and what stands between them, that a reader of pieces could lose.
const Texts oddTexts = {
    "",
    "[Model] M\n[Model] N\n",
    "[IBIS Ver] 4.2\n[Model] M\nModel_type Input\n[Model] N\n[Component] C\n",
    "[IBIS Ver] 9.9\n[Component] C\n",
    "[Notes] a\n[Component] C\n[Pin]\n1 a M\n[Model] M\n[End]\n[Model] N\n",
    "[Component] C\n[Submodel] S\n[Model] M\n",
    "[Component] C\n[Model] M\n[External Circuit] X\n[Model] N\n",
    "[Component] C\n[Model] M\n[Ramp]\n[Number Of Pins] 3\n[Pin]\n[Model] N\n",
    "[Component] C\n[Define Package Model] P\n[Number Of Pins] 1\n[Pin Numbers]\n1\n[Model Data]\n"
    "[Model] M\n[Component] D\n[End Model Data]\n[Model] N\n",
    "[Component] C\n[Define Package Model] P\n[Model Data]\n[Model] M\n[Model] N\n",
    "[Component] C\n[Model Selector] S\nM a\n[Model Selector] S\nN b\n[Model] M\n[Component] D\n",
};

TEST(Pieces, ReadAsTheWholeText) {
  for (const std::string& text : oddTexts) {
    SCOPED_TRACE(text);
    Parsed whole(text);
    IBISFile file;
    IBISScanner scanner(text, 1);
    parseFile(file, scanner);
    EXPECT_EQ(texts(file.data().errors), whole.errors());
    EXPECT_EQ(texts(file.data().warnings), whole.warnings());
    ASSERT_EQ(file.data().components.size(), whole.data().components.size());
    EXPECT_EQ(file.data().modelSelectors.size(), whole.data().modelSelectors.size());
    EXPECT_EQ(file.data().packageModels.size(), whole.data().packageModels.size());
    ASSERT_EQ(file.data().models.size(), whole.data().models.size());
    for (std::size_t i = 0; i < file.data().models.size(); ++i) {
      EXPECT_EQ(file.data().models[i]->name, whole.data().models[i]->name);
      EXPECT_EQ(file.data().models[i]->lineNumber, whole.data().models[i]->lineNumber);
    }
  }
}

// More records than a piece of usual size holds.
TEST(Pieces, OfALargeFileAreReadAll) {
  std::string text = "[IBIS Ver] 4.2\n[Component] C\n[Pin] signal_name model_name\n";
  for (int i = 0; i < 5000; ++i) text += std::to_string(i) + " s NC\n";
  for (int i = 0; i < 3000; ++i) {
    text += "[Model] M" + std::to_string(i) + "\nModel_type Input\nVinl = 1\nVinh = 2\n";
  }
  IBISFile file;
  IBISScanner scanner(text);
  parseFile(file, scanner);
  EXPECT_EQ(texts(file.data().errors), Texts());
  EXPECT_EQ(file.data().components[0]->pins.size(), 5000u);
  ASSERT_EQ(file.data().models.size(), 3003u);
  EXPECT_EQ(file.data().models.back()->name, "M2999");
  EXPECT_EQ(file.data().models.back()->lineNumber, 3 + 5000 + 4 * 2999 + 1);
  EXPECT_EQ(file.data().models.back()->vinh.typ, 2.0);
}

}  // namespace
}  // namespace ibis::testing
