// SPDX-License-Identifier: Apache-2.0
// Tests of interface files: what they make, what is wrong with them, and what stays behind when making fails.
#include "Foundation/NSNib.h"

#include <regex>

#include "Foundation/NSBundle-NibLoading.h"
#include "Foundation/NSGeometry.h"
#include "Foundation/NSNibError.h"
#include "Platform/Foundation/BundleTestSupport.h"
#include "Platform/Foundation/PropertyListSamples.h"

namespace {

extern Library nibLibrary;

// An object with values of many types, which notes what is done to it.
class NTThing : public NSObject {
    PELVOR_CLASS(NTThing, NSObject);
    PELVOR_CREATORS(initWithTitle_inside, initFailing, initNone);

  public:
    static Retained<NTThing> initWithTitle_inside(NSString* title, NTThing* outer,
                                                  Class* cls = classObject()) {
        auto thing = make<NTThing>(cls);
        thing->note("made with %@ in %@", title, outer);
        thing->_outer.set(outer);
        return thing;
    }
    static Retained<NTThing> initFailing(Class* cls = classObject()) {
        throw NSException(NSGenericException, "no memory for " + std::string(cls->name()));
    }
    static Retained<NTThing> initNone(Class* = classObject()) { return nullptr; }

    void setTitle(NSString* title) { note("title %@", title); }
    void setAny(id object) { note("any %@", object); }
    void setWidth(float width) { note("width %g", width); }
    void setRatio(double ratio) { note("ratio %g", ratio); }
    void setCount(short count) { note("count %d", count); }
    void setMask(unsigned long long mask) { note("mask %llu", mask); }
    void setShown(bool isShown) { note("shown %d", isShown); }
    void setFrame(NSRect frame) {
        note("frame %g %g %g %g", frame.origin.x, frame.origin.y, frame.size.width, frame.size.height);
    }
    void setRange(NSRange range) { note("range %u %u", range.location, range.length); }
    void setKind(Class* kind) { note("kind %@", kind); }
    void setPointer(void*) {}
    void setPeer(NTThing* peer) { _peer.set(peer); }
    void setParts(NSArray* parts) { _parts.set(parts); }
    void setParts_by(NSArray*, id) {}
    void setBroken(id object) {
        if (object) throw std::runtime_error("it is broken");
    }
    void setStubborn(id object) {
        if (!object) throw NSException(NSInvalidArgumentException, "setStubborn: the object is null");
    }
    void setTarget(id target) { _target = target; }
    void setAction(SEL action) { note("action %@", NSString::ofUTF8(action.name())); }
    void push(id) {}
    id target() { return _target; }
    NTThing* peer() { return _peer; }
    NSArray* parts() { return _parts; }
    void awakeFromNib() {
        note("awake %d", static_cast<int>(_peer.get() != nullptr));
        if (whenAwake) whenAwake(this);
    }

    NSString* description() override { return u"a thing"_ns; }
    static inline int alive = 0;
    static inline std::string notes;
    static inline std::function<void(NTThing*)> whenAwake;

  protected:
    NTThing() { ++alive; }
    ~NTThing() { --alive; }

  private:
    template <class... A>
    void note(const char* format, const A&... arguments) {
        notes += NSString::stringWithFormat(NSString::ofUTF8(format), arguments...)->toUTF8() + "; ";
    }

    Retained<NTThing> _outer, _peer;
    Retained<NSArray> _parts;
    Unretained<Object> _target;
};

PELVOR_DEFINE_CLASS(NTThing, nibLibrary) {
    methods.creator<"initWithTitle:inside:", &NTThing::initWithTitle_inside>();
    methods.creator<"initFailing", &NTThing::initFailing>();
    methods.creator<"initNone", &NTThing::initNone>();
    methods.instance<"setTitle:", &NTThing::setTitle>();
    methods.instance<"setAny:", &NTThing::setAny>();
    methods.instance<"setWidth:", &NTThing::setWidth>();
    methods.instance<"setRatio:", &NTThing::setRatio>();
    methods.instance<"setCount:", &NTThing::setCount>();
    methods.instance<"setMask:", &NTThing::setMask>();
    methods.instance<"setShown:", &NTThing::setShown>();
    methods.instance<"setFrame:", &NTThing::setFrame>();
    methods.instance<"setRange:", &NTThing::setRange>();
    methods.instance<"setKind:", &NTThing::setKind>();
    methods.instance<"setPointer:", &NTThing::setPointer>();
    methods.instance<"setPeer:", &NTThing::setPeer>();
    methods.instance<"setParts:", &NTThing::setParts>();
    methods.instanceAs<"setTwo:by:", &NTThing::setParts_by>();
    methods.instance<"setBroken:", &NTThing::setBroken>();
    methods.instance<"setStubborn:", &NTThing::setStubborn>();
    methods.instance<"setTarget:", &NTThing::setTarget>();
    methods.instance<"setAction:", &NTThing::setAction>();
    methods.instance<"push:", &NTThing::push>();
    methods.instance<"awakeFromNib", &NTThing::awakeFromNib>();
}
constinit Library nibLibrary{"NibTest", {}, kClassesOf<NTThing>, {}};

struct Nib : ::testing::Test {
    Nib() { registerLibrary(nibLibrary); }
    ~Nib() {
        NTThing::notes.clear();
        NTThing::whenAwake = nullptr;
        EXPECT_EQ(NTThing::alive, 0);
    }

    Retained<NSNib> nibOf(const std::string& text, NSBundle* bundle = nullptr) {
        return NSNib::initWithData_bundle_error(dataOf(text), bundle, &error);
    }
    // Why the file is refused, or its objects are not made.
    std::string faultOf(const std::string& text, id owner = nullptr) {
        AutoreleasePool pool;
        NSArray* objects = nullptr;
        auto nib = nibOf(text);
        const bool isMade =
            nib && nib->instantiateNibWithOwner_topLevelObjects_error(owner, &objects, &error);
        EXPECT_EQ(!isMade, !!error);
        EXPECT_EQ(!isMade, !objects);
        return error ? shown(error) : "";
    }
    // What the things note while the file is loaded.
    std::string notesOf(const std::string& text, id owner = nullptr) {
        AutoreleasePool pool;
        NTThing::notes.clear();
        EXPECT_EQ(faultOf(text, owner), "");
        return NTThing::notes;
    }

    NSNibError* error = nullptr;
};

// A file with these objects and connections.
std::string file(const std::string& objects, const std::string& connections = "") {
    return "{Objects = (" + objects + "); Connections = (" + connections + ");}";
}
// An object with that identifier and these further entries.
std::string thing(const std::string& identifier, const std::string& entries = "") {
    return "{Identifier = " + identifier + "; Class = NTThing; " + entries + "},";
}
std::string values(const std::string& entries) { return "Values = {" + entries + "};"; }

TEST_F(Nib, SetsValuesOfEachTypeByTheirKeys) {
    expectAll(
        {"title = \"\"; -> title ; ", "any = (a, {Dictionary = {b = (c);};}); -> any ( a, { b = ( c ); } ); ",
         "width = \"1.5\"; -> width 1.5; ", "ratio = 2; -> ratio 2; ", "count = \"-7\"; -> count -7; ",
         "mask = 18446744073709551615; -> mask 18446744073709551615; ", "shown = NO; -> shown 0; ",
         "shown = true; -> shown 1; ", "frame = (1, 2, \"3.5\", 4); -> frame 1 2 3.5 4; ",
         "range = (3, 4); -> range 3 4; ", "kind = NSArray; -> kind NSArray; ",
         "action = \"x:y:\"; -> action x:y:; ", "title = b; Title = a; -> title a; title b; ",
         "any = {Object = owner;}; -> any (null); ", "any = ({Object = owner;}, a); -> any ( a ); "},
        [this](const std::string& entries) {
            std::string notes = notesOf(file(thing("a", values(entries))));
            notes = std::regex_replace(notes, std::regex("\\s+"), " ");
            const std::size_t end = notes.find("awake 0; ");
            return end == std::string::npos ? notes : notes.substr(0, end);
        });
    EXPECT_EQ(notesOf(file(thing("a", "Values = ({width = 2;}, {count = 1; }, {width = 3;});"))),
              "width 2; count 1; width 3; awake 0; ");
    const std::string numbers = propertyList(
        "<dict><key>Objects</key><array><dict><key>Identifier</key><string>a</string><key>Class</key>"
        "<string>NTThing</string><key>Values</key><dict><key>any</key><date>2001-01-01T00:00:00Z</date>"
        "<key>count</key><real>12</real><key>mask</key><integer>18446744073709551615</integer>"
        "<key>shown</key><true/><key>width</key><integer>3</integer></dict></dict></array></dict>");
    EXPECT_EQ(
        notesOf(numbers),
        "any 2001-01-01 00:00:00 +0000; count 12; mask 18446744073709551615; shown 1; width 3; awake 0; ");
}

TEST_F(Nib, MakesObjectsInTheOrderInWhichTheyNeedEachOther) {
    auto owner = make<NTThing>();
    const std::string inner = "Create = \"initWithTitle:inside:\"; Arguments = (A, {Object = b;});";
    const std::string outer = "Create = \"initWithTitle:inside:\"; Arguments = (B, {Object = owner;});";
    const std::string connections =
        "{Source = owner; Outlet = peer; Target = a;}, {Source = a; Outlet = peer; Target = c;},"
        "{Source = a; Action = \"push:\"; Target = c;}, {Source = c; Action = \"undo:\";}";
    EXPECT_EQ(notesOf(file(thing("a", inner) + thing("b", outer) + thing("c"), connections), owner),
              "made with B in a thing; made with A in a thing; action push:; action undo:; "
              "awake 0; awake 1; awake 0; awake 1; ");
    ASSERT_TRUE(owner->peer());
    owner->setPeer(nullptr);
}

TEST_F(Nib, MakesNewObjectsEachTimeWhichTheCallerKeeps) {
    auto nib = nibOf("{Objects = (" + thing("a") + thing("b") + thing("c") + "); TopLevel = (c, a);}");
    Retained<NSArray> kept;
    {
        AutoreleasePool pool;
        NSArray *first = nullptr, *second = nullptr;
        ASSERT_TRUE(nib->instantiateNibWithOwner_topLevelObjects(nullptr, &first));
        ASSERT_TRUE(nib->instantiateNibWithOwner_topLevelObjects(nullptr, &second));
        ASSERT_TRUE(nib->instantiateNibWithOwner_topLevelObjects(nullptr, nullptr));
        EXPECT_EQ(shown(first->count(), second->count(), NTThing::alive), "2 2 4");
        EXPECT_NE(first->objectAtIndex(0), second->objectAtIndex(0));
        kept.set(first);
    }
    EXPECT_EQ(NTThing::alive, 2);
}

TEST_F(Nib, RefusesFilesThatContradictThemselves) {
    const std::pair<std::string, const char*> rows[] = {
        {"(a)", "this is no dictionary"},
        {"{", "line 1, column 2: "},
        {"{Objekts = ();}", "key 'Objekts': there is no such key here"},
        {"{}", "key 'Objects': the key is missing"},
        {"{Format = 2; Objects = ();}", "key 'Format': this format is not known, but only 1"},
        {"{Objects = a;}", "key 'Objects': this is no array"},
        {"{Strings = (a); Objects = ();}", "key 'Strings': this is no text"},
        {"{Objects = (a);}", "object '1': this is no dictionary"},
        {"{Objects = ({Class = A;});}", "object '1', key 'Identifier': the key is missing"},
        {"{Objects = ({Identifier = a;});}", "object 'a', key 'Class': the key is missing"},
        {file(thing("a", "Clas = b;")), "object 'a', key 'Clas': there is no such key here"},
        {file(thing("a") + thing("b") + thing("a")),
         "object '3', key 'Identifier': another object is called 'a'"},
        {file(thing("owner")), "key 'Identifier': 'owner' is the object that the file is loaded for"},
        {file(thing("a", "Create = \"init:\";")), "key 'Arguments': 'init:' takes 1, and there are 0"},
        {file(thing("a", values("peer = {Object = b;};"))), "object 'a', key 'peer': there is no object 'b'"},
        {file(thing("a", values("peer = ({Object = a; X = Y;});"))),
         "object 'a', key 'X': there is no such key here"},
        {file(thing("a", values("any = {};"))),
         "object 'a', key 'any': a dictionary as a value has the key 'Object', 'Text' or 'Dictionary'"},
        {file("", "{Source = a; Outlet = b; Target = c;}"), "key 'Source': there is no object 'a'"},
        {file(thing("a"), "{Source = a; Outlet = b;}"), "object 'a', key 'Target': the key is missing"},
        {file(thing("a"), "{Source = a; Outlet = b; Target = c;}"),
         "object 'a', key 'b': there is no object 'c'"},
        {file(thing("a"), "{Source = a; Target = a;}"), "a connection has either 'Outlet' or 'Action'"},
        {"{Objects = (); TopLevel = (owner);}", "key 'TopLevel': the owner is no object of the file"},
        {"{Objects = (); TopLevel = (a);}", "key 'TopLevel': there is no object 'a'"},
        {file(thing("a", "Create = \"x:\"; Arguments = (({Object = b;}));") +
              thing("b", "Create = \"x:\"; Arguments = ({Object = a;});")),
         "object 'a', key 'Arguments': the objects are made from each other: 'a' needs 'b' needs 'a'"},
    };
    for (const auto& [text, fault] : rows) {
        EXPECT_FALSE(nibOf(text)) << text;
        EXPECT_THAT(error ? shown(error) : "", HasSubstr(fault)) << text;
    }
    EXPECT_EQ(shown(error->file(), "|", error->object(), "|", error->key()), " | a | Arguments");
}

TEST_F(Nib, TellsWhichObjectAndKeyCannotBeMade) {
    auto owner = make<NTThing>();
    const std::pair<std::string, const char*> rows[] = {
        {file("{Identifier = a; Class = NTNothing;}"),
         "object 'a', key 'Class': there is no class NTNothing"},
        {file(thing("a", "Create = initWithNothing;")),
         "object 'a', key 'Create': the class NTThing has no operation 'initWithNothing' that returns an "
         "object"},
        {file(thing("a", "Create = release;")), "'release' that returns an object"},
        {file(thing("a", "Create = initFailing;")), "object 'a', key 'Create': no memory for NTThing"},
        {file(thing("a", "Create = initNone;")), "object 'a', key 'Create': 'initNone' returned null"},
        {file(thing("a", values("titel = b;"))),
         "object 'a', key 'titel': the class NTThing has no setter 'setTitel:'"},
        {file(thing("a", values("two = b;"))), "the class NTThing has no setter 'setTwo:'"},
        {file(thing("a", values("\"\" = b;"))), "the class NTThing has no setter 'set:'"},
        {file(thing("a", values("title = (b);"))), "object 'a', key 'title': -[NTThing setTitle:]: "},
        {file(thing("a", values("width = wide;"))), "key 'width': the text 'wide' cannot become a float"},
        {file(thing("a", values("width = \"1 \";"))), "the text '1 ' cannot become a float"},
        {file(thing("a", values("count = 40000;"))), "the text '40000' cannot become a short"},
        {file(thing("a", values("count = \"1.5\";"))), "the text '1.5' cannot become a short"},
        {file(thing("a", values("shown = maybe;"))), "the text 'maybe' cannot become a "},
        {file(thing("a", values("frame = (1, 2, 3);"))), "the NSArray cannot become a struct "},
        {file(thing("a", values("frame = (1, 2, 3, x);"))), "the NSArray cannot become a struct "},
        {file(thing("a", values("kind = NTNothing;"))), "the text 'NTNothing' cannot become "},
        {file(thing("a", values("pointer = 5;"))), "the text '5' cannot become "},
        {file(thing("a", values("broken = b;"))), "object 'a', key 'broken': it is broken"},
        {file(thing("a"), "{Source = owner; Outlet = pier; Target = a;}"),
         "object 'owner', key 'pier': the class NTThing has no setter 'setPier:'"},
        {file(thing("a"), "{Source = a; Action = \"jump:\"; Target = owner;}"),
         "object 'a', key 'jump:': the object 'owner', a NTThing, has no such operation"},
        {file("{Identifier = a; Class = NSObject;}", "{Source = a; Action = \"push:\";}"),
         "object 'a', key 'push:': the class NSObject has no setter 'setTarget:'"},
        {"{Objects = ({Identifier = a; Class = NTThing; Create = \"initWithTitle:inside:\"; Arguments = (b, "
         "c);});}",
         "object 'a', key 'Create': "},
    };
    for (const auto& [text, fault] : rows) EXPECT_THAT(faultOf(text, owner), HasSubstr(fault)) << text;
}

TEST_F(Nib, RefusesTooDeepChainsAndTakesLongLists) {
    auto chain = [](int length, bool isBackwards) {
        std::string objects;
        for (int i = 0; i < length; ++i) {
            const int number = isBackwards ? length - 1 - i : i;
            objects += number == 0 ? thing("o0")
                                   : thing("o" + std::to_string(number),
                                           "Create = \"initWithTitle:inside:\"; Arguments = (t, {Object = o" +
                                               std::to_string(number - 1) + ";});");
        }
        return file(objects);
    };
    for (bool isBackwards : {false, true}) {
        EXPECT_EQ(faultOf(chain(512, isBackwards)), "");
        EXPECT_THAT(faultOf(chain(513, isBackwards)),
                    HasSubstr("more than 512 objects are made one from the other"));
        EXPECT_FALSE(nibOf(chain(20000, isBackwards)));
    }
    std::string many;
    for (int i = 0; i < 20000; ++i) many += thing("o" + std::to_string(i), values("count = 1;"));
    EXPECT_EQ(faultOf(file(many)), "");
    EXPECT_THAT(faultOf(file(thing("a", values("any = " + repeated("(", 600) + repeated(")", 600) + ";")))),
                HasSubstr("nested"));
    const std::string deep = repeated("(", 500) + "{Object = a;}" + repeated(")", 500);
    runOnSmallStack([&] { EXPECT_EQ(faultOf(file(thing("a", values("any = " + deep + ";")))), ""); });
}

// Things that own each other, and are owned by the owner, who refuses something after all that.
TEST_F(Nib, LeavesNothingBehindWhenMakingFails) {
    const std::string objects = thing("a", values("peer = {Object = b;}; stubborn = {Object = b;};")) +
                                thing("b", values("parts = ({Object = a;});")) + thing("c");
    const std::string connections =
        "{Source = b; Outlet = peer; Target = a;}, {Source = owner; Outlet = peer; Target = c;},"
        "{Source = owner; Action = \"push:\"; Target = c;}, ";
    auto owner = make<NTThing>();
    auto before = [&] { return !owner->peer() && !owner->target() && NTThing::alive == 1; };
    EXPECT_EQ(faultOf(file(objects, connections + "{Source = owner; Outlet = broken; Target = b;}"), owner),
              "object 'owner', key 'broken': it is broken");
    EXPECT_TRUE(before());
    int awake = 0;
    NTThing::whenAwake = [&](NTThing*) {
        if (++awake == 3) throw NSException(NSGenericException, "too early");
    };
    EXPECT_EQ(faultOf(file(objects, connections), owner), "object 'c', key 'awakeFromNib': too early");
    EXPECT_TRUE(before());
    NTThing::whenAwake = [&](NTThing*) { throw 5; };
    AutoreleasePool pool;
    EXPECT_THROW(nibOf(file(objects, connections))->instantiateNibWithOwner_topLevelObjects(owner, nullptr),
                 int);
    EXPECT_TRUE(before());
    LogLines log;
    NTThing::whenAwake = nullptr;
    EXPECT_FALSE(
        nibOf(file(thing("a", values("x = y;"))))->instantiateNibWithOwner_topLevelObjects(owner, nullptr));
    EXPECT_THAT(log.lines, ElementsAre(HasSubstr("object 'a', key 'x'")));
}

TEST_F(Nib, MayLetGoOfEverythingWhileItsObjectsWake) {
    auto owner = make<NTThing>();
    auto nib = nibOf(file(thing("a"), "{Source = owner; Outlet = peer; Target = a;}"));
    int loads = 0;
    NTThing::whenAwake = [&](NTThing* self) {
        owner->setPeer(nullptr);
        const bool isMade = ++loads > 1 || nib->instantiateNibWithOwner_topLevelObjects(nullptr, nullptr);
        EXPECT_TRUE(isMade);
        nib = nullptr;
        if (self == owner) owner = make<NTThing>();
    };
    {
        AutoreleasePool pool;
        NSArray* objects = nullptr;
        EXPECT_TRUE(nib->instantiateNibWithOwner_topLevelObjects(owner, &objects));
        EXPECT_EQ(objects->count(), 1u);
    }
    EXPECT_EQ(NTThing::alive, 1);
}

TEST_F(Nib, LooksUpFilesAndTextsInTheUsersLanguage) {
    BundleFolder folder;
    const fs::path path = folder.makeBundle("Nibs.bundle");
    const std::string resources = "Nibs.bundle/Contents/Resources/";
    folder.write(
        resources + "Panel.nib",
        "{Strings = Panel; " +
            file(thing("a", values("any = ({Text = _A;}, {Text = _B; Table = Other;}, {Text = _C;});")))
                .substr(1));
    folder.write(resources + "de.lproj/Panel.strings", "_A = eins; _B = falsch;");
    folder.write(resources + "de.lproj/Other.strings", "_B = zwei;");
    folder.write(resources + "en.lproj/Own.nib", file(thing("a", values("title = English;"))));
    folder.write(resources + "de.lproj/Own.nib", file(thing("a", values("title = Deutsch;"))));
    folder.write(resources + "Broken.nib", "{Objects = (;}");
    LanguageScope language("de");
    NSBundle* bundle = bundleAt(path);
    auto load = [&](NSString* name) {
        AutoreleasePool pool;
        NTThing::notes.clear();
        auto nib = NSNib::initWithNibNamed_bundle_error(name, bundle, &error);
        if (!nib) return shown(error);
        EXPECT_TRUE(!error && nib->instantiateNibWithOwner_topLevelObjects(nullptr, nullptr));
        return NTThing::notes;
    };
    EXPECT_THAT(load(u"Panel"_ns), AllOf(HasSubstr("eins"), HasSubstr("zwei"), HasSubstr("_C")));
    EXPECT_EQ(load(u"Own.nib"_ns), "title Deutsch; awake 0; ");
    EXPECT_THAT(load(u"Missing"_ns),
                AllOf(StartsWith("Missing: the bundle "), EndsWith(" has no such resource")));
    EXPECT_THAT(load(u"Broken"_ns), HasSubstr("Broken.nib: line 1, column 13: "));

    // The older way: the owner and the objects stand in a table.
    LogLines log;
    {
        AutoreleasePool pool;
        auto owner = make<NTThing>();
        auto* objects = NSMutableArray::array();
        auto* names = NSDictionary::of({{NSNibOwner, owner.get()}, {NSNibTopLevelObjects, objects}});
        EXPECT_TRUE(loadNibFile_externalNameTable_withZone(bundle, u"Own"_ns, names, nullptr));
        EXPECT_TRUE(loadNibFile_externalNameTable_withZone(bundle, u"Own"_ns, nullptr, nullptr));
        NSString* file = bundle->pathForResource_ofType(u"Own"_ns, u"nib"_ns);
        EXPECT_TRUE(NSBundle_NibLoading::loadNibFile_externalNameTable_withZone(file, names, nullptr));
        EXPECT_EQ(shown(objects->count(), NTThing::alive), "2 4");
        EXPECT_FALSE(loadNibFile_externalNameTable_withZone(bundle, u"Broken"_ns, names, nullptr));
        EXPECT_FALSE(NSBundle_NibLoading::loadNibFile_externalNameTable_withZone(nullptr, names, nullptr));
        EXPECT_FALSE(NSNib::initWithNibNamed_bundle(nullptr, bundle) ||
                     NSNib::initWithNibNamed_bundle(u""_ns, bundle));
    }
    EXPECT_THAT(log.lines, IsEmpty());
}

}  // namespace
