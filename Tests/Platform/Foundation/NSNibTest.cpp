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
class NTThing final : public NSObject {
    PELVOR_CLASS(NTThing, NSObject);

  public:
    static Retained<NTThing> initWithTitle_inside(NSString* title, NTThing* outer,
                                                  Class* cls = classObject()) {
        auto thing = make<NTThing>(cls);
        notes += "made with " + shown(title, "in", outer) + "; ";
        thing->_outer.set(outer);
        return thing;
    }
    static Retained<NTThing> initFailing(Class*) { throw NSException(NSGenericException, "no memory"); }
    static Retained<NTThing> initNone(Class*) { return nullptr; }

    // The setter of most values.
    template <class T>
    void take(T value) {
        notes += shown(value) + "; ";
    }
    void setPeer(NTThing* peer) { _peer.set(peer); }
    void setParts(NSArray* parts) { _parts.set(parts); }
    void setBroken(id object) {
        if (object) throw std::runtime_error("it is broken");
    }
    void setStubborn(id object) {
        if (!object) throw NSException(NSInvalidArgumentException, "setStubborn: the object is null");
    }
    void setTarget(id target) { _target = target; }
    void setAction(SEL action) { take(action.name()); }
    void push(id) {}
    id target() { return _target; }
    NTThing* peer() { return _peer; }
    void awakeFromNib() {
        take(_peer ? "awake with peer" : "awake");
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
    Retained<NTThing> _outer, _peer;
    Retained<NSArray> _parts;
    Unretained<Object> _target;
};

PELVOR_DEFINE_CLASS(NTThing, nibLibrary) {
    methods.creator<"initWithTitle:inside:", &NTThing::initWithTitle_inside>();
    methods.creator<"initFailing", &NTThing::initFailing>();
    methods.creator<"initNone", &NTThing::initNone>();
    methods.instanceAs<"setTitle:", &NTThing::take<NSString*>>();
    methods.instanceAs<"setAny:", &NTThing::take<id>>();
    methods.instanceAs<"setWidth:", &NTThing::take<float>>();
    methods.instanceAs<"setCount:", &NTThing::take<short>>();
    methods.instanceAs<"setMask:", &NTThing::take<unsigned long long>>();
    methods.instanceAs<"setShown:", &NTThing::take<bool>>();
    methods.instanceAs<"setFrame:", &NTThing::take<NSRect>>();
    methods.instanceAs<"setRange:", &NTThing::take<NSRange>>();
    methods.instanceAs<"setKind:", &NTThing::take<Class*>>();
    methods.instanceAs<"setPointer:", &NTThing::take<void*>>();
    methods.instance<"setPeer:", &NTThing::setPeer>();
    methods.instance<"setParts:", &NTThing::setParts>();
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
    // Why the file is refused, or its objects are not made; "" if they are.
    std::string faultOf(const std::string& text, id owner = nullptr) {
        AutoreleasePool pool;
        NSArray* objects = nullptr;
        auto nib = nibOf(text);
        if (nib) nib->instantiateNibWithOwner_topLevelObjects_error(owner, &objects, &error);
        EXPECT_EQ(!objects, !!error);
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

// The file of a row: the whole file, or entries of the object "a" and, behind a bar, connections.
std::string fileOf(const std::string& row) {
    if (row[0] == '{' || row[0] == '(') return row;
    const std::size_t bar = std::min(row.find('|'), row.size());
    return file(thing("a", row.substr(0, bar)), row.substr(std::min(bar + 1, row.size())));
}

TEST_F(Nib, SetsValuesOfEachTypeByTheirKeys) {
    expectAll({"title = \"\"; -> ; ", "any = (a, {Dictionary = {b = (c);};}); -> ( a, { b = ( c ); } ); ",
               "width = \"1.5\"; -> 1.5; ", "count = \"-7\"; -> -7; ",
               "mask = 18446744073709551615; -> 18446744073709551615; ", "shown = NO; -> 0; ",
               "shown = true; -> 1; ", "frame = (1, 2, \"3.5\", 4); -> {{1, 2}, {3.5, 4}}; ",
               "range = (3, 4); -> {3, 4}; ", "kind = NSArray; -> NSArray; ", "action = \"x:y:\"; -> x:y:; ",
               "title = b; Title = a; -> a; b; ", "any = {Object = owner;}; -> (null); ",
               "any = ({Object = owner;}, a); -> ( a ); "},
              [this](const std::string& entries) {
                  const std::string notes = notesOf(fileOf(values(entries)));
                  return std::regex_replace(notes.substr(0, notes.find("awake; ")), std::regex("\\s+"), " ");
              });
    EXPECT_EQ(notesOf(fileOf("Values = ({width = 2;}, {count = 1; }, {width = 3;});")), "2; 1; 3; awake; ");
    const auto numbers = propertyList(
        "<dict><key>Objects</key><array><dict><key>Identifier</key><string>a</string><key>Class</key>"
        "<string>NTThing</string><key>Values</key><dict><key>any</key><date>2001-01-01T00:00:00Z</date>"
        "<key>count</key><real>12</real><key>mask</key><integer>18446744073709551615</integer>"
        "<key>shown</key><true/><key>width</key><integer>3</integer></dict></dict></array></dict>");
    EXPECT_EQ(notesOf(numbers), "2001-01-01 00:00:00 +0000; 12; 18446744073709551615; 1; 3; awake; ");
}

TEST_F(Nib, MakesObjectsInTheOrderInWhichTheyNeedEachOther) {
    auto owner = make<NTThing>();
    const std::string inner = "Create = \"initWithTitle:inside:\"; Arguments = (A, {Object = b;});";
    const std::string outer = "Create = \"initWithTitle:inside:\"; Arguments = (B, {Object = owner;});";
    const std::string connections =
        "{Source = owner; Outlet = peer; Target = a;}, {Source = a; Outlet = peer; Target = c;},"
        "{Source = a; Action = \"push:\"; Target = c;}, {Source = c; Action = \"undo:\";}";
    EXPECT_EQ(notesOf(file(thing("a", inner) + thing("b", outer) + thing("c"), connections), owner),
              "made with B in a thing; made with A in a thing; push:; undo:; "
              "awake; awake with peer; awake; awake with peer; ");
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

// "object 'a', key 'b': " becomes "a.b: ".
std::string shortened(const std::string& fault) {
    return std::regex_replace(fault, std::regex("object '(\\w+)', key '([^']*)'"), "$1.$2");
}

TEST_F(Nib, RefusesFilesThatContradictThemselves) {
    expectAll(
        {"(a) -> this is no dictionary",
         "{Objekts = ();} -> key 'Objekts': there is no such key here",
         "{Format = 2; Objects = ();} -> key 'Format': this format is not known, but only 1",
         "{} -> key 'Objects': the key is missing",
         "{Objects = a;} -> key 'Objects': this is no array",
         "{Objects = (a);} -> object '1': this is no dictionary",
         "{Objects = ({Class = A;});} -> 1.Identifier: the key is missing",
         "{Objects = ({Identifier = a;});} -> a.Class: the key is missing",
         "Clas = b; -> a.Clas: there is no such key here",
         "},{Identifier = a; -> 2.Identifier: another object is called 'a'",
         "},{Identifier = owner; -> 2.Identifier: 'owner' is the object that the file is loaded for",
         "Create = \"x:\"; -> a.Arguments: 'x:' takes 1, and there are 0",
         "Values = {b = {Object = c;};}; -> a.b: there is no object 'c'",
         "Values = {b = ({Object = a; X = Y;});}; -> a.X: there is no such key here",
         "Values = {b = {};}; -> a.b: a dictionary as a value has the key 'Object', 'Text' or 'Dictionary'",
         "|{Source = b; Outlet = b; Target = c;} -> key 'Source': there is no object 'b'",
         "|{Source = a; Outlet = b;} -> a.Target: the key is missing",
         "|{Source = a; Outlet = b; Target = c;} -> a.b: there is no object 'c'",
         "|{Source = a;} -> a.Connections: a connection has either 'Outlet' or 'Action'",
         "{Objects = (); TopLevel = (owner);} -> key 'TopLevel': the owner is no object of the file",
         "Create = \"x:\"; Arguments = (({Object = a;})); -> a.Arguments: the objects are made from each "
         "other: 'a' needs 'a'"},
        [this](const std::string& row) {
            EXPECT_FALSE(nibOf(fileOf(row)));
            return shortened(shown(error));
        });
    EXPECT_EQ(shown(error->file(), "|", error->object(), "|", error->key()), " | a | Arguments");
    EXPECT_THAT(faultOf("{"), StartsWith("line 1, column 2: "));
}

TEST_F(Nib, TellsWhichObjectAndKeyCannotBeMade) {
    auto owner = make<NTThing>();
    expectAll(
        {"{Objects = ({Identifier = a; Class = No;});} -> a.Class: there is no class No",
         "Create = release; -> a.Create: the class NTThing has no operation 'release' that returns an object",
         "Create = initFailing; -> a.Create: no memory",
         "Create = initNone; -> a.Create: 'initNone' returned null",
         "Values = {titel = b;}; -> a.titel: the class NTThing has no setter 'setTitel:'",
         "Values = {\"\" = b;}; -> object 'a': the class NTThing has no setter 'set:'",
         "Values = {width = \"1 \";}; -> a.width: the text '1 ' cannot become a float",
         "Values = {count = 40000;}; -> a.count: the text '40000' cannot become a short",
         "Values = {broken = b;}; -> a.broken: it is broken",
         "|{Source = owner; Outlet = b; Target = a;} -> owner.b: the class NTThing has no setter 'setB:'",
         "|{Source = a; Action = \"jump:\"; Target = owner;} -> a.jump:: the object 'owner', a NTThing, has "
         "no such operation"},
        [&](const std::string& row) { return shortened(faultOf(fileOf(row), owner)); });
    for (const char* entries : {"title = (b)", "count = \"1.5\"", "shown = maybe", "frame = (1, 2, 3)",
                                "frame = (1, 2, 3, x)", "kind = No", "pointer = 5"})
        EXPECT_THAT(faultOf(fileOf(values(entries + std::string(";")))), StartsWith("object 'a', key '"));
    EXPECT_THAT(faultOf(fileOf("Create = \"initWithTitle:inside:\"; Arguments = (b, c);")),
                StartsWith("object 'a', key 'Create': "));
    EXPECT_THAT(faultOf(file("{Identifier = a; Class = NSObject;}", "{Source = a; Action = \"push:\";}")),
                EndsWith("the class NSObject has no setter 'setTarget:'"));
}

TEST_F(Nib, RefusesTooDeepChainsAndTakesLongLists) {
    const std::string made = "Create = \"initWithTitle:inside:\"; Arguments = (t, {Object = ";
    auto chain = [&](int length, bool isBackwards) {
        std::string objects;
        for (int i = 0; i < length; ++i) {
            const int number = isBackwards ? length - 1 - i : i;
            objects += thing("o" + std::to_string(number),
                             made + (number ? "o" + std::to_string(number - 1) : "owner") + ";});");
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
    EXPECT_THAT(faultOf(fileOf(values("any = " + repeated("(", 600) + repeated(")", 600) + ";"))),
                HasSubstr("nested"));
    const std::string deep = repeated("(", 500) + "{Object = a;}" + repeated(")", 500);
    runOnSmallStack([&] { EXPECT_EQ(faultOf(fileOf(values("any = " + deep + ";"))), ""); });
}

// Things that own each other, and are owned by the owner, who refuses something after all that.
TEST_F(Nib, LeavesNothingBehindWhenMakingFails) {
    const std::string objects = thing("a", values("peer = {Object = b;}; stubborn = {Object = b;};")) +
                                thing("b", values("parts = ({Object = a;});")) + thing("c");
    const std::string connections =
        "{Source = b; Outlet = peer; Target = a;}, {Source = owner; Outlet = peer; Target = c;},"
        "{Source = owner; Action = \"push:\"; Target = c;}, ";
    auto owner = make<NTThing>();
    // The fault, and whether all is as before.
    auto fault = [&](const std::string& connection) {
        const std::string fault = faultOf(file(objects, connections + connection), owner);
        return shown(fault, !owner->peer() && !owner->target() && NTThing::alive == 1);
    };
    EXPECT_EQ(fault("{Source = owner; Outlet = broken; Target = b;}"),
              "object 'owner', key 'broken': it is broken 1");
    int awake = 0;
    NTThing::whenAwake = [&](NTThing*) {
        if (++awake == 3) throw NSException(NSGenericException, "too early");
    };
    EXPECT_EQ(fault(""), "object 'c', key 'awakeFromNib': too early 1");
    NTThing::whenAwake = [&](NTThing*) { throw 5; };
    AutoreleasePool pool;
    EXPECT_THROW(fault(""), int);
    NTThing::whenAwake = nullptr;
    EXPECT_TRUE(!owner->peer() && !owner->target() && NTThing::alive == 1);
    LogLines log;
    EXPECT_FALSE(nibOf(fileOf(values("x = y;")))->instantiateNibWithOwner_topLevelObjects(owner, nullptr));
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
    const std::string texts = "any = ({Text = _A;}, {Text = _B; Table = Other;}, {Text = _C;});";
    folder.write(resources + "Panel.nib", "{Strings = Panel; " + fileOf(values(texts)).substr(1));
    folder.write(resources + "de.lproj/Panel.strings", "_A = eins; _B = falsch;");
    folder.write(resources + "de.lproj/Other.strings", "_B = zwei;");
    folder.write(resources + "en.lproj/Own.nib", fileOf(values("title = English;")));
    folder.write(resources + "de.lproj/Own.nib", fileOf(values("title = Deutsch;")));
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
    EXPECT_EQ(load(u"Own.nib"_ns), "Deutsch; awake; ");
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
