// SPDX-License-Identifier: Apache-2.0
// Texts of a given size in several languages, for benchmarks.
#pragma once

#include <cmath>
#include <random>
#include <string>
#include <string_view>
#include <vector>

namespace pelvor {

/// A language, by words that its texts are put together from: stems, with what may stand before and behind
/// them. Words are common and rare as in real text: the n-th most common one stands there one n-th as often
/// as the first.
struct SampleLanguage {
    std::u16string_view stems, prefixes, endings;  ///< with blanks between; "-" is nothing
    std::u16string_view between;                   ///< words: a blank, or nothing
};

inline constexpr SampleLanguage kEnglish{
    u"the of and to in a is that it was for on are as with they be at one have this from by hot word but "
    u"what some "
    u"we can out other were all there when up use your how said each she which do their time if will way "
    u"about many "
    u"then them write would like so these her long make thing see him two has look more day could go come "
    u"did number "
    u"sound no most people my over know water than call first who may down side been now find any new work "
    u"part take "
    u"get place made live where after back little only round man year came show every good me give our under "
    u"name "
    u"office fill million difficult affair field light life quality world school paper letter river music "
    u"system",
    u"- - - - un re over", u"- - - - s ed ing ly er, . ,", u" "};
inline constexpr SampleLanguage kRussian{
    u"и в не на я быть он с что а по это она этот к но они мы весь который из у то за свой один от такой "
    u"сказать год "
    u"для знать мочь говорить такое время рука самый другой жизнь день очень стать новый дом слово место "
    u"лицо друг "
    u"глаз работа город вопрос сторона страна мир случай голова ребёнок сила конец вид система часть "
    u"отношение",
    u"- - - по при вы", u"- - - а ов ам ами ый ого ому , .", u" "};
inline constexpr SampleLanguage kArabic{
    u"في من على أن إلى كان هذا ذلك عن مع كل بعد قبل بين كتاب بيت مدينة رجل يوم سنة عمل وقت علم لغة كلمة باب "
    u"طريق ماء "
    u"شمس قمر بحر جبل ليل نهار صوت عين يد قلب رأس ولد بنت صديق حياة عالم دولة شعب تاريخ سوق مدرسة جامعة طالب "
    u"معلم",
    u"- - ال و ف ب ل وال بال", u"- - - ة ات ين ون ه ها هم نا ،", u" "};
/// A story of some 190 words, since stems and endings put together make no Hindi.
inline constexpr std::u16string_view kHindiStory =
    u"गाँव के बाहर एक पुराना कुआँ था, जिसके पास बरगद का बड़ा पेड़ खड़ा था। गर्मियों की दोपहर में बच्चे उसी की छाया में खेलते और "
    u"बूढ़े लोग "
    u"चारपाई डालकर बीते दिनों की बातें करते थे। एक दिन शहर से एक अध्यापक आए। उन्होंने कहा कि जो बच्चा पढ़ना चाहे, वह शाम "
    u"को पेड़ के "
    u"नीचे आ जाए। पहले दिन केवल तीन बच्चे आए, दूसरे दिन सात, और महीने भर में पूरा आँगन भर गया। किताबें कम थीं, इसलिए अध्यापक "
    u"मिट्टी पर लकड़ी से अक्षर लिखते और बच्चे उन्हें दोहराते। बरसात आई तो गाँव वालों ने मिलकर छप्पर बनाया। किसी ने बाँस दिए, "
    u"किसी ने "
    u"रस्सी, और कुम्हार ने पानी के लिए दो घड़े रख दिए। धीरे-धीरे लोगों को समझ आया कि अक्षर जानने से चिट्ठी पढ़ी जा सकती है, "
    u"हिसाब "
    u"रखा जा सकता है और अपने अधिकार भी पहचाने जा सकते हैं। पाँच वर्ष बाद उसी गाँव की एक लड़की डॉक्टर बनने के लिए नगर गई। "
    u"जाते समय "
    u"उसने कुएँ का पानी पिया, पेड़ को प्रणाम किया और अध्यापक से कहा, \"जो प्रकाश आपने यहाँ जलाया है, मैं उसे और आगे ले "
    u"जाऊँगी।\" आज "
    u"वहाँ पक्का विद्यालय है, पुस्तकालय में हज़ारों पुस्तकें हैं, परन्तु पढ़ाई का पहला पाठ अब भी बरगद की छाया में ही होता है। ";
inline constexpr SampleLanguage kThai{
    u"ที่ และ ใน เป็น การ ของ มี ได้ ไม่ ว่า จะ ให้ กับ แต่ คน ภาษา ไทย น้ำ บ้าน เมือง หนังสือ โรงเรียน เวลา วัน ปี ทำงาน ชีวิต "
    u"โลก "
    u"ประเทศ เพื่อน เด็ก ผู้หญิง ผู้ชาย อาหาร ถนน ทะเล ภูเขา ดวงอาทิตย์ ดวงจันทร์ เสียง ตา มือ หัวใจ",
    u"-", u"-", u""};
inline constexpr SampleLanguage kChinese{
    u"的 一 是 不 了 人 我 在 有 他 这 中 大 来 上 国 个 到 说 们 为 子 和 你 地 出 道 也 时 年 得 就 那 要 "
    u"下 以 生 会 自 着 去 之 "
    u"过 家 学 对 可 她 里 后 小 么 心 多 天 而 能 好 都 然 没 日 于 起 还 发 成 事 只 作 当 想 看 文 无 开 "
    u"手 十 用 主 行 方 又 如 前 "
    u"所 本 见 经 头 面 公 同 三 已 老 从 动 两 长 知 民 样 现 分 将 外 但 身 些 与 高 意 进 把 法 此 实 回 "
    u"二 理 美 点 月 明 其 ， 。",
    u"-", u"-", u""};

inline std::vector<std::u16string> wordsOf(std::u16string_view list) {
    std::vector<std::u16string> words;
    for (std::size_t place = 0; place < list.size();) {
        const std::size_t end = std::min(list.find(u' ', place), list.size());
        words.emplace_back(list.substr(place, end - place));
        if (words.back() == u"-") words.back().clear();
        place = end + 1;
    }
    return words;
}

/// A text of so many units in that language.
inline std::u16string sampleText(const SampleLanguage& language, std::size_t size) {
    std::mt19937 random(7);
    const auto stems = wordsOf(language.stems), prefixes = wordsOf(language.prefixes),
               endings = wordsOf(language.endings);
    auto any = [&](const std::vector<std::u16string>& words) { return words[random() % words.size()]; };
    std::uniform_real_distribution<double> share(0, 1);
    std::u16string text;
    while (text.size() < size) {
        const double rank = std::pow(static_cast<double>(stems.size()), share(random)) - 1;
        text += any(prefixes) + stems[static_cast<std::size_t>(rank)] + any(endings);
        text += language.between;
    }
    text.resize(size);
    return text;
}

/// The text over and over.
inline std::u16string runningText(std::u16string_view once, std::size_t size) {
    std::u16string text;
    while (text.size() < size) text += once;
    text.resize(size);
    return text;
}

/// Words of one to nine letters drawn at random.
inline std::u16string randomLetters(std::size_t size) {
    std::mt19937 random(1);
    std::u16string text;
    while (text.size() < size) {
        for (std::size_t i = random() % 9 + 1; i > 0; --i)
            text += static_cast<char16_t>(u'a' + random() % 26);
        text += u' ';
    }
    text.resize(size);
    return text;
}

}  // namespace pelvor
