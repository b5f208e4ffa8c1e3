// SPDX-License-Identifier: Apache-2.0
// RichTextParser: walks through a rich text file, token by token.
#pragma once

#include <map>
#include <memory>
#include <set>

#include "Writer/PlugIns/RichText/CodePages.h"
#include "Writer/PlugIns/RichText/RichTextReading.h"
#include "Writer/PlugIns/RichText/WRByteScanner.h"

namespace pelvor {

struct ControlWord;

/// Reads one file. Groups are kept on a stack of states; a control word is found by its name and calls the
/// function that its row of the table of control words names.
class RichTextParser {
  public:
    RichTextParser(const TextFileSource& source, const TextFileProgress& progress);
    RichText run();

  private:
    friend struct ControlWord;
    friend class ControlWords;

    /// Where text goes.
    enum class Destination {
        text,
        skipped,
        fontTable,
        fontAlternative,
        colourTable,
        styleSheet,
        documentField,
        fieldInstruction,
        language,
        picture
    };
    struct State {
        Destination destination = Destination::text;
        bool opensDestination = false;  // the destination ends with this group
        bool isAlternative = false;     // skipped, unless the group with the text in Unicode comes
        Destination outerDestination = Destination::text;  // of the alternative
        bool isInTable = false;
        int field = 0;  // the number of the field around
        int documentField = -1;
        int skippedPerUnicode = 1;
        std::size_t captureStart = 0;  // in `_captured`
        RichTextBuilder* builder = nullptr;
        CharacterFormat character;
        ParagraphFormat paragraph;
    };
    /// Why headers and footers are not the same on all pages, or have other numbers.
    enum PageRule { otherFirstPage, facingPages, laterStart };
    struct FileFont {
        FontEntry entry;
        int number = 0;
    };
    struct FilePicture {
        PictureEntry entry;
        bool isKnown = false, hasHalfByte = false;
        std::uint8_t halfByte = 0;
        std::int32_t width = 0, height = 0, scaleX = 100, scaleY = 100;
    };

    // Tokens
    bool checkStart();
    void takeTokens();
    void openGroup();
    void closeGroup();
    void takeControl();
    void takeControlWord();
    void takeName();
    void takeParameter();
    void takeSymbol();
    void takeHexadecimal();
    void takePlain();
    void takePlainText();
    void takePlainDigits();
    void takeDigit(unichar unit);
    void endTexts(const State& outermost);
    void finish();

    // Text
    void takeByte(std::uint8_t byte);
    void flushBytes();
    void appendUnits(std::u16string_view units);
    CodePage& codePage();
    CodePage& codePageNumbered(int number);
    std::uint32_t formatNumber();
    void endTextParagraph();
    std::uint32_t paragraphNumber(ParagraphFormat format);

    // Destinations
    bool isInLine() const { return _state.builder == &_result.header || _state.builder == &_result.footer; }
    bool hasTitle() const { return !_result.fields[static_cast<std::size_t>(DocumentField::title)].empty(); }
    void replaceFieldResult(char16_t sign);
    void leaveOutPageRules();
    bool isText() const { return _state.destination == Destination::text; }
    void begin(Destination destination);
    void beginPart(RichTextBuilder& builder);
    void endDestination(const State& state);
    void commitFont();
    void commitColour();
    void commitStyle();
    void setUsualFont();
    void endPart(const State& part);
    void endPicture();
    void takeLanguageName(const std::u16string& name);
    std::u16string takeCaptured();
    CharacterFormat& character();
    ParagraphFormat& paragraph();

    // What control words do, with the value of their row in the table. Where there is a parameter,
    // `_parameter` has it.
    void ignore(int) {}
    void keepText(int) {}
    void leaveOut(int);
    void skipDestination(int);
    void leaveOutDestination(int);
    void beginDestination(int destination);
    void beginDocumentField(int field);
    void beginFootnote(int);
    void beginHeader(int isOfRightPages);
    void beginFooter(int isOfRightPages);
    void takePageRule(int rule);
    void beginField(int);
    void setFontKind(int kind);
    void beginFieldResult(int);
    void beginAlternatives(int);
    void beginUnicodeAlternative(int);
    void takeBinary(int);
    void takeUnicode(int);
    void setSkippedPerUnicode(int);
    void setDocumentCodePage(int page);
    void setDefaultFont(int);
    void setDefaultTabs(int);
    void setFontNumber(int);
    void setFontCharacterSet(int);
    void setFontCodePage(int);
    void setColour(int component);
    void setPageNumber(int number);
    void setSectionPageNumber(int number);
    void setSectionBreak(int breaks);
    void appendCharacter(int unit);
    void appendPageNumber(int unit);
    void appendNoteNumber(int);
    void endParagraph(int);
    void endCell(int);
    void endRow(int);
    void endSection(int);
    void resetCharacter(int);
    void resetParagraph(int);
    void setFlag(int property);
    void setLanguage(int);
    void setUsualLanguage(int);
    void leaveUsualLanguageUnmarked(int);
    void setNumber(int property);
    void setValue(int packed);
    void setColourOf(int property);
    void setOffset(int sign);
    void setKernQuarters(int);
    void setHyphenation(int);
    void setNatural(int);
    void setParagraphFlag(int property);
    void setParagraphNumber(int property);
    void setParagraphValue(int packed);
    void setInTable(int);
    void setStyle(int isCharacterStyle);
    void setTabType(int type);
    void addTab(int);
    void setPictureType(int type);
    void setPictureNumber(int member);

    bool isSet() const { return !_hasParameter || _parameter != 0; }
    int parameterBetween(int least, int most) const;
    void note(RichTextProblem problem);
    std::uint64_t place() { return _scanner->scanLocation(); }

    const TextFileSource& _source;
    Retained<WRByteScanner> _scanner;
    RichText _result;
    RichTextBuilder _notes{0};
    State _state;
    std::vector<State> _states;  // those of the groups around
    std::size_t _surplusDepth = 0;
    bool _isDone = false;

    const ControlWord* _word = nullptr;
    std::array<char, 32> _letters;
    std::string_view _name;  // of the word, or its beginning: some of the letters
    bool _hasParameter = false, _isStarred = false;
    int _parameter = 0;

    std::string _bytes;            // of a character that is not complete
    std::size_t _skippedLeft = 0;  // characters that stand for one that was read in Unicode
    std::u16string _captured;      // texts of destinations that are no text of the document
    bool _isFormatCurrent = false;
    std::uint32_t _formatNumber = 0;
    CodePage* _codePage = nullptr;
    std::map<int, std::shared_ptr<CodePage>> _codePages;

    int _documentCodePage = 1252, _defaultFont = 0;
    int _usualLanguage = 0, _unmarkedLanguage = 0;  // the latter for text without a language of its own
    FileFont _font;
    std::map<int, std::int32_t> _fonts;  // from the file's numbers to ours
    ColourEntry _colour;
    bool _hasColour = false;
    std::vector<std::int32_t> _fileColours;
    int _styleNumber = 0;
    bool _isCharacterStyle = false;
    std::map<std::pair<bool, int>, std::int32_t> _styles;
    std::vector<std::u16string> _fields;
    FilePicture _picture;
    int _tabType = 0, _noteCount = 0;
    bool _hasSectionEnded = false;
    bool _hasPageRule[3] = {};  // by PageRule
    bool _hasLineOfRightPages = false;
    std::set<std::string> _leftOut;
    ParagraphFormat _usualParagraph;
    CharacterFormat _usualCharacter;
};

/// A row of the table of control words.
struct ControlWord {
    std::string_view name;
    void (RichTextParser::*action)(int);
    int value = 0;

    /// The word's row, or null.
    static const ControlWord* find(std::string_view name);
};

}  // namespace pelvor
