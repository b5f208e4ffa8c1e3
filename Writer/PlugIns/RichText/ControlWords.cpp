// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <array>
#include <iterator>
#include <utility>
#include <vector>

#include "Text/NSTextTab.h"
#include "Text/TextAttributes.h"
#include "Writer/PlugInProtocol.h"
#include "Writer/PlugIns/RichText/RichTextParser.h"

namespace pelvor {
namespace {

template <class Value>
constexpr int of(Value value) {
    return static_cast<int>(value);
}
// A property and its value in one number.
template <class Property>
constexpr int packed(Property property, int value) {
    return of(property) << 8 | (value & 0xFF);
}

// Names in a list that is parted by single spaces.
constexpr std::size_t countOf(std::string_view names) {
    return 1 + static_cast<std::size_t>(std::count(names.begin(), names.end(), ' '));
}

}  // namespace

/// The table of control words.
class ControlWords {
    using P = RichTextParser;
    using D = RichTextParser::Destination;
    using C = CharacterProperty;
    using A = ParagraphProperty;

  public:
    static constexpr ControlWord kWords[] = {
        // Characters
        {"tab", &P::appendCharacter, u'\t'},
        {"line", &P::appendCharacter, 0x2028},
        {"lbr", &P::appendCharacter, 0x2028},
        {"page", &P::appendCharacter, u'\f'},
        {"column", &P::appendCharacter, u'\f'},
        {"emdash", &P::appendCharacter, 0x2014},
        {"endash", &P::appendCharacter, 0x2013},
        {"emspace", &P::appendCharacter, 0x2003},
        {"enspace", &P::appendCharacter, 0x2002},
        {"qmspace", &P::appendCharacter, 0x2005},
        {"bullet", &P::appendCharacter, 0x2022},
        {"lquote", &P::appendCharacter, 0x2018},
        {"rquote", &P::appendCharacter, 0x2019},
        {"ldblquote", &P::appendCharacter, 0x201C},
        {"rdblquote", &P::appendCharacter, 0x201D},
        {"ltrmark", &P::appendCharacter, 0x200E},
        {"rtlmark", &P::appendCharacter, 0x200F},
        {"zwj", &P::appendCharacter, 0x200D},
        {"zwnj", &P::appendCharacter, 0x200C},
        {"zwbo", &P::appendCharacter, 0x200B},
        {"zwnbo", &P::appendCharacter, 0x2060},
        {"chpgn", &P::appendPageNumber, WRPageNumberCharacter},
        {"chftn", &P::appendNoteNumber},
        {"u", &P::takeUnicode},
        {"uc", &P::setSkippedPerUnicode},
        {"bin", &P::takeBinary},
        // Paragraphs, cells and sections
        {"par", &P::endParagraph},
        {"cell", &P::endCell},
        {"nestcell", &P::appendCharacter, u'\t'},
        {"nestrow", &P::appendCharacter, 0x2028},
        {"row", &P::endRow},
        {"sect", &P::endSection},
        {"sectd", &P::setSectionBreak, 1},
        {"sbknone", &P::setSectionBreak, 0},
        {"sbkpage", &P::setSectionBreak, 1},
        {"sbkcol", &P::setSectionBreak, 1},
        {"sbkeven", &P::setSectionBreak, 1},
        {"sbkodd", &P::setSectionBreak, 1},
        // The document
        {"rtf", &P::ignore},
        {"ansi", &P::setDocumentCodePage, 1252},
        {"mac", &P::setDocumentCodePage, 10000},
        {"pc", &P::setDocumentCodePage, 437},
        {"pca", &P::setDocumentCodePage, 850},
        {"ansicpg", &P::setDocumentCodePage, 0},
        {"deff", &P::setDefaultFont},
        {"deftab", &P::setDefaultTabs},
        {"paperw", &P::setPageNumber, of(PageNumber::paperWidth)},
        {"paperh", &P::setPageNumber, of(PageNumber::paperHeight)},
        {"margl", &P::setPageNumber, of(PageNumber::left)},
        {"margr", &P::setPageNumber, of(PageNumber::right)},
        {"margt", &P::setPageNumber, of(PageNumber::top)},
        {"margb", &P::setPageNumber, of(PageNumber::bottom)},
        {"pgwsxn", &P::setSectionPageNumber, of(PageNumber::paperWidth)},
        {"pghsxn", &P::setSectionPageNumber, of(PageNumber::paperHeight)},
        {"marglsxn", &P::setSectionPageNumber, of(PageNumber::left)},
        {"margrsxn", &P::setSectionPageNumber, of(PageNumber::right)},
        {"margtsxn", &P::setSectionPageNumber, of(PageNumber::top)},
        {"margbsxn", &P::setSectionPageNumber, of(PageNumber::bottom)},
        {"headery", &P::setSectionPageNumber, of(PageNumber::headerPlace)},
        {"footery", &P::setSectionPageNumber, of(PageNumber::footerPlace)},
        // Tables of the document
        {"fonttbl", &P::beginDestination, of(D::fontTable)},
        {"f", &P::setFontNumber},
        {"fnil", &P::setFontKind, FontEntry::any},
        {"froman", &P::setFontKind, FontEntry::serif},
        {"fswiss", &P::setFontKind, FontEntry::sansSerif},
        {"fmodern", &P::setFontKind, FontEntry::fixedPitch},
        {"fscript", &P::setFontKind, FontEntry::any},
        {"fdecor", &P::setFontKind, FontEntry::any},
        {"ftech", &P::setFontKind, FontEntry::any},
        {"fbidi", &P::ignore},
        {"fprq", &P::ignore},
        {"fcharset", &P::setFontCharacterSet},
        {"cpg", &P::setFontCodePage},
        {"falt", &P::beginDestination, of(D::fontAlternative)},
        {"colortbl", &P::beginDestination, of(D::colourTable)},
        {"red", &P::setColour, 0},
        {"green", &P::setColour, 1},
        {"blue", &P::setColour, 2},
        {"stylesheet", &P::beginDestination, of(D::styleSheet)},
        {"s", &P::setStyle, 0},
        {"cs", &P::setStyle, 1},
        {"info", &P::beginDocumentField, -1},
        {"title", &P::beginDocumentField, of(DocumentField::title)},
        {"author", &P::beginDocumentField, of(DocumentField::author)},
        {"subject", &P::beginDocumentField, of(DocumentField::subject)},
        {"keywords", &P::beginDocumentField, of(DocumentField::keywords)},
        {"doccomm", &P::beginDocumentField, of(DocumentField::comment)},
        // Parts
        {"footnote", &P::beginFootnote},
        {"header", &P::beginHeader},
        {"headerr", &P::beginHeader, 1},
        {"footer", &P::beginFooter},
        {"footerr", &P::beginFooter, 1},
        {"titlepg", &P::takePageRule, P::otherFirstPage},
        {"facingp", &P::takePageRule, P::facingPages},
        {"pgnstart", &P::takePageRule, P::laterStart},
        {"pgnstarts", &P::takePageRule, P::laterStart},
        {"field", &P::beginField},
        {"fldinst", &P::beginDestination, of(D::fieldInstruction)},
        {"fldrslt", &P::beginFieldResult},
        {"pict", &P::beginDestination, of(D::picture)},
        {"pngblip", &P::setPictureType, PictureEntry::png},
        {"jpegblip", &P::setPictureType, PictureEntry::jpeg},
        {"emfblip", &P::setPictureType, PictureEntry::enhancedMetafile},
        {"wmetafile", &P::setPictureType, PictureEntry::metafile},
        {"picwgoal", &P::setPictureNumber, 0},
        {"pichgoal", &P::setPictureNumber, 1},
        {"picscalex", &P::setPictureNumber, 2},
        {"picscaley", &P::setPictureNumber, 3},
        {"upr", &P::beginAlternatives},
        {"ud", &P::beginUnicodeAlternative},
        // Characters' formats
        {"plain", &P::resetCharacter},
        {"fs", &P::setNumber, of(C::size)},
        {"b", &P::setFlag, packed(C::bold, 1)},
        {"i", &P::setFlag, packed(C::italic, 1)},
        {"ul", &P::setFlag, packed(C::underline, NSUnderlineStyleSingle)},
        {"ulnone", &P::setValue, packed(C::underline, NSUnderlineStyleNone)},
        {"uldb", &P::setFlag, packed(C::underline, NSUnderlineStyleDouble)},
        {"ulth", &P::setFlag, packed(C::underline, NSUnderlineStyleThick)},
        {"strike", &P::setFlag, packed(C::strikethrough, 1)},
        {"striked", &P::setFlag, packed(C::strikethrough, NSUnderlineStyleDouble)},
        {"super", &P::setValue, packed(C::superscript, 1)},
        {"sub", &P::setValue, packed(C::superscript, -1)},
        {"nosupersub", &P::setValue, packed(C::superscript, 0)},
        {"up", &P::setOffset, 1},
        {"dn", &P::setOffset, -1},
        {"expndtw", &P::setNumber, of(C::kern)},
        {"expnd", &P::setKernQuarters},
        {"charscalex", &P::setNumber, of(C::width)},
        {"scaps", &P::setFlag, packed(C::capitals, 1)},
        {"caps", &P::setFlag, packed(C::capitals, 2)},
        {"lang", &P::setLanguage},
        {"deflang", &P::setUsualLanguage},
        {"pelvorunmarked", &P::leaveUsualLanguageUnmarked},
        {"pelvorlang", &P::beginDestination, of(D::language)},  // the exact name
        {"cf", &P::setColourOf, of(C::foreground)},
        {"cb", &P::setColourOf, of(C::background)},
        {"chcbpat", &P::setColourOf, of(C::background)},
        {"highlight", &P::setColourOf, of(C::background)},
        {"ulc", &P::setColourOf, of(C::underlineColour)},
        {"v", &P::setFlag, packed(C::hidden, 1)},
        // Paragraphs' formats
        {"pard", &P::resetParagraph},
        {"ql", &P::setParagraphValue, packed(A::alignment, NSLeftTextAlignment)},
        {"qr", &P::setParagraphValue, packed(A::alignment, NSRightTextAlignment)},
        {"qc", &P::setParagraphValue, packed(A::alignment, NSCenterTextAlignment)},
        {"qj", &P::setParagraphValue, packed(A::alignment, NSJustifiedTextAlignment)},
        {"qd", &P::setParagraphValue, packed(A::alignment, NSJustifiedTextAlignment)},
        {"ltrpar", &P::setParagraphValue, packed(A::direction, NSWritingDirectionLeftToRight)},
        {"rtlpar", &P::setParagraphValue, packed(A::direction, NSWritingDirectionRightToLeft)},
        {"pelvornatural", &P::setNatural},
        {"li", &P::setParagraphNumber, of(A::leadingIndent)},
        {"lin", &P::setParagraphNumber, of(A::leadingIndent)},
        {"fi", &P::setParagraphNumber, of(A::firstLineIndent)},
        {"ri", &P::setParagraphNumber, of(A::trailingIndent)},
        {"rin", &P::setParagraphNumber, of(A::trailingIndent)},
        {"sb", &P::setParagraphNumber, of(A::spaceBefore)},
        {"sa", &P::setParagraphNumber, of(A::spaceAfter)},
        {"sl", &P::setParagraphNumber, of(A::lineHeight)},
        {"slmult", &P::setParagraphFlag, of(A::isLineHeightFactor)},
        {"hyphauto", &P::setHyphenation},
        {"hyphpar", &P::setParagraphFlag, of(A::hyphenates)},
        {"keepn", &P::setParagraphFlag, of(A::keepWithNext)},
        {"keep", &P::setParagraphFlag, of(A::keepTogether)},
        {"pagebb", &P::setParagraphFlag, of(A::pageBreakBefore)},
        {"intbl", &P::setInTable},
        {"tqr", &P::setTabType, NSRightTabStopType},
        {"tqc", &P::setTabType, NSCenterTabStopType},
        {"tqdec", &P::setTabType, NSDecimalTabStopType},
        {"tx", &P::addTab},
        // Groups whose text is text of the document, in one form of several
        {"shppict", &P::keepText},
        {"nonshppict", &P::skipDestination},
        {"listtext", &P::leaveOut},
        {"pntext", &P::leaveOut},
        {"object", &P::leaveOut},
        {"result", &P::keepText},
        {"shp", &P::leaveOut},
        {"shprslt", &P::keepText},
        {"nonesttables", &P::skipDestination},
    };

    /// Destinations that say nothing of the document which is not said elsewhere, or is not for its readers.
    static constexpr const char* kSkipped =
        "colorschememapping creatim buptim datastore defchp defpap edmins factoidname fchars filetbl "
        "generator "
        "hlinkbase id latentstyles lchars listname listoverridetable listpicture listtable mmathPr "
        "nesttableprops "
        "nofchars nofcharsws nofpages nofwords operator panose passwordhash pgdsctbl pgp pgptbl picprop pn "
        "pnseclvl pnlvl blipuid printim propname protusertbl pxe revtbl revtim rsidtbl staticval themedata "
        "userprops "
        "vern version wgrffmtfilter writereservhash xmlnstbl fontemb fontfile fname "
        "ftnsep ftnsepc ftncn aftnsep aftnsepc aftncn company manager category levelnumbers leveltext "
        "liststylename template";
    /// Destinations with content that is not read.
    static constexpr const char* kLeftOut =
        "headerl headerf footerl footerf annotation atnauthor atnid atndate atnicn atnparent atnref atntime "
        "atrfstart "
        "atrfend bkmkstart bkmkend xe tc rxe txe docvar do shpinst objdata objclass objname objalias mmath "
        "moMath background";
    /// Words that change nothing that is to be seen, or repeat in another way what other words say.
    static constexpr const char* kIgnored =
        "adjustright af afs ab ai alang aspalpha aspnum faauto fcs ltrch rtlch loch hich dbch ltrsect "
        "rtlsect "
        "ltrdoc rtldoc deflangfe deflanga adeff adeflang stshfdbch stshfloch stshfhich stshfbi "
        "langfe langnp langfenp "
        "noproof kern insrsid rsidroot rsid delrsid charrsid pararsid sectrsid tblrsid styrsid "
        "widctlpar nowidctlpar widowctrl nooverflow nosnaplinegrid snapgridtocell outlinelevel "
        "contextualspace sbauto saauto lisa lisb itap ilvl ls cgrid chshdng chcfpat "
        "sbasedon snext slink sqformat spriority sunhideused ssemihidden slocked sautoupd additive spersonal "
        "scompose sreply shidden linkstyles viewkind viewscale viewzk viewbksp formshade horzdoc dghspace "
        "dgvspace "
        "dghorigin dgvorigin dghshow dgvshow jexpand jcompress pgbrdrhead pgbrdrfoot splytwnine ftnlytwnine "
        "htmautsp "
        "nolnhtadjtbl useltbaln alntblind lytcalctblwd lyttblrtgr lnbrkrule nobrkwrptbl allowfieldendsel "
        "wrppunct "
        "asianbrkrule newtblstyruls nogrowautofit usenormstyforlist noindnmbrts felnbrelev nocxsptable "
        "indrlsweleven "
        "noafcnsttbl afelev utinl hwelev spltpgpar notcvasp notbrkcnstfrctbl notvatxbx krnprsnet "
        "cachedcolbal "
        "trackmoves trackformatting donotembedsysfont relyonvml donotembedlingdata grfdocevents validatexml "
        "showplaceholdtext ignoremixedcontent saveinvalidxml showxmlerrors themelang themelangfe themelangcs "
        "fet ilfomacatclnup ftnbj aenddoc aftnnar ftnstart aftnstart ftnrstcont aftnrstcont ftnnar endnhere "
        "sectdefaultcl "
        "sftnbj sectlinegrid linex cols colsx pgndec pgnrestart nocolbal nolead expshrtn "
        "noultrlspc "
        "dntblnsbdb nospaceforul hyphcaps hyphhotz hyphconsec gutter gutterprl guttersxn "
        "truncatefontheight "
        "subfontbysize sprsbsp wpjst msmcap viewnobound private rsidstyles formprot picw pich picbpp "
        "picbmp piccropl piccropr piccropt piccropb bliptag blipupi defformat pnstart sec min hr dy mo yr "
        "nouicompat fromtext fromhtml lndscpsxn landscape paperpsz psz margmirror "
        "partightenfactor pardirnatural tightenfactor expansion "
        "nosectexpand readonlyrecommended ilfo nolinespec tscbandsh trautofit fldedit flddirty fldlock "
        "fldpriv "
        "shpbypara shpbymargin lnongrid fahang facenter faroman favar fafixed nocwrap nowwrap nooverflow "
        "toplinepunct "
        "cghi objattph objemb objh objw objscalex objscaley rsltpict rslttxt rsltrtf rsltbmp rsltmerge "
        "objupdate objlink objsetsize";

    /// The row of the name, or null.
    static const ControlWord* find(std::string_view name) {
        static ControlWords words;
        return *words.placeOf(name);
    }

  private:
    // A power of two.
    static constexpr std::size_t kPlaces = 2048;
    static_assert(2 * (std::size(kWords) + countOf(kSkipped) + countOf(kLeftOut) + countOf(kIgnored)) <
                      kPlaces,
                  "a search for an unknown word ends at a free place");

    // Lists first, so that no name of theirs takes the place of a row.
    ControlWords() {
        const std::pair<const char*, ControlWord> lists[] = {{kIgnored, {"", &P::ignore}},
                                                             {kSkipped, {"", &P::skipDestination}},
                                                             {kLeftOut, {"", &P::leaveOutDestination}}};
        for (const auto& [names, word] : lists) {
            for (std::string_view rest = names; !rest.empty();) {
                const std::size_t end = std::min(rest.find(' '), rest.size());
                _listed.push_back({rest.substr(0, end), word.action});
                rest.remove_prefix(std::min(end + 1, rest.size()));
            }
        }
        for (const ControlWord& word : _listed) *placeOf(word.name) = &word;
        for (const ControlWord& word : kWords) *placeOf(word.name) = &word;
    }

    // Names are so short that a call would take longer.
    static bool isSame(std::string_view name, std::string_view other) {
        if (name.size() != other.size()) return false;
        for (std::size_t i = 0; i < name.size(); ++i)
            if (name[i] != other[i]) return false;
        return true;
    }

    // The word's place in the table, or the free one where it would stand.
    const ControlWord** placeOf(std::string_view name) {
        std::size_t place = 0;
        for (char letter : name) place = (place ^ static_cast<std::uint8_t>(letter)) * 0x01000193;
        place ^= place >> 16;
        for (;; ++place) {
            const ControlWord*& word = _places[place % kPlaces];
            if (!word || isSame(word->name, name)) return &word;
        }
    }

    std::vector<ControlWord> _listed;
    std::array<const ControlWord*, kPlaces> _places{};
};

const ControlWord* ControlWord::find(std::string_view name) { return ControlWords::find(name); }

}  // namespace pelvor
