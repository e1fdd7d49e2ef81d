#include "Questions.h"
#include "Shapes.h"
#include "libraries/PugiXml.h"
#include <algorithm>
#include <filesystem>
#include <map>

namespace bench {

namespace {

const std::map<std::string, std::vector<Question>> kChosen = {
    {"vk.xml",
     {{"names", "//type", "//type"},
      {"steps", "/registry/commands/command", "/registry/commands/command"},
      {"attribute", "//type[@category='bitmask']", "//type[@category='bitmask']"},
      {"number", "//enum[@bitpos > 5]", "//enum[@bitpos > 5]"},
      {"last", "//command[last()]", "(//command)[last()]"},
      {"second", "//command[position() = 2]", "(//command)[2]"},
      {"following-siblings", "//param/following-sibling::param", "//param/following-sibling::param"},
      {"preceding-siblings", "//param/preceding-sibling::*", "//param/preceding-sibling::node()"},
      {"ancestors", "//name/ancestor::*", "//name/ancestor::node()"},
      {"nested", "//types//type", "//types//type"}}},
    {"mame-nes.xml",
     {{"names", "//rom", "//rom"},
      {"steps", "/softwarelist/software/part", "/softwarelist/software/part"},
      {"attribute", "//feature[@name='slot']", "//feature[@name='slot']"},
      {"number", "//software[year = 1987]", "//software[year = 1987]"},
      {"last", "//software[last()]", "(//software)[last()]"},
      {"second", "//software[position() = 2]", "(//software)[2]"},
      {"following-siblings", "//info/following-sibling::part", "//info/following-sibling::part"},
      {"preceding-siblings", "//part/preceding-sibling::*", "//part/preceding-sibling::node()"},
      {"ancestors", "//rom/ancestor::*", "//rom/ancestor::node()"},
      {"nested", "//part//rom", "//part//rom"}}},
    {"fugue1.mscx.xml",
     {{"names", "//Note", "//Note"},
      {"steps", "/museScore/Score/Staff/Measure", "/museScore/Score/Staff/Measure"},
      {"attribute", "//Staff[@id='1']", "//Staff[@id='1']"},
      {"number", "//program[@value > 40]", "//program[@value > 40]"},
      {"last", "//Note[last()]", "(//Note)[last()]"},
      {"second", "//Note[position() = 2]", "(//Note)[2]"},
      {"following-siblings", "//Chord/following-sibling::Chord", "//Chord/following-sibling::Chord"},
      {"preceding-siblings", "//Chord/preceding-sibling::*", "//Chord/preceding-sibling::node()"},
      {"ancestors", "//Note/ancestor::*", "//Note/ancestor::node()"},
      {"nested", "//Measure//pitch", "//Measure//pitch"}}},
};

std::string stepsTo(pugi::xml_node node) {
    std::string path;
    for (; node.type() == pugi::node_element; node = node.parent()) path = "/" + std::string(node.name()) + path;
    return path;
}

// Sibling axes are left out: on a wide document the peers take minutes for them.
std::vector<Question> questionsAboutMostFrequent(const std::string& text) {
    std::map<std::string, std::size_t> counts;
    std::map<std::string, pugi::xml_node> firsts;
    const PugiXml::Tree tree = PugiXml::parse(text);
    walk<PugiXml::Ways>(static_cast<pugi::xml_node>(*tree), [&](const pugi::xml_node& node) {
        if (node.type() != pugi::node_element) return;
        ++counts[node.name()];
        firsts.emplace(node.name(), node);
    });
    const std::string name = std::max_element(counts.begin(), counts.end(), [](const auto& left, const auto& right) {
                                 return left.second < right.second;
                             })->first;
    const pugi::xml_node first = firsts[name];
    const std::string all = "//" + name;
    std::vector<Question> questions = {
        {"names", all, all},
        {"steps", stepsTo(first), stepsTo(first)},
        {"last", all + "[last()]", "(" + all + ")[last()]"},
        {"second", all + "[position() = 2]", "(" + all + ")[2]"},
        {"ancestors", all + "/ancestor::*", all + "/ancestor::node()"},
        {"nested", "//" + std::string(tree->document_element().name()) + all,
         "//" + std::string(tree->document_element().name()) + all},
    };
    if (const pugi::xml_attribute attribute = first.first_attribute()) {
        const std::string path = all + "[@" + attribute.name() + "='" + attribute.value() + "']";
        questions.push_back({"attribute", path, path});
    }
    for (Question& question : questions) question.mustAgree = false;
    return questions;
}

}  // namespace

std::vector<Question> questionsAbout(const std::string& path, const std::string& text) {
    const auto chosen = kChosen.find(std::filesystem::path(path).filename().string());
    return chosen != kChosen.end() ? chosen->second : questionsAboutMostFrequent(text);
}

const std::vector<ShapeQuestion>& shapeQuestions() {
    static const std::vector<ShapeQuestion> questions = {
        {"wide: //a/following-sibling::a",
         {"", "//a/following-sibling::a", "//a/following-sibling::a"},
         wide,
         [](std::size_t count) { return count - 1; }},
        {"wide: //a/preceding-sibling::*",
         {"", "//a/preceding-sibling::*", "//a/preceding-sibling::node()"},
         wide,
         [](std::size_t count) { return count - 1; }},
        // The innermost <x> has no <x> below it, so that the document is the last that is found.
        {"deep: //x/ancestor::*",
         {"", "//x/ancestor::*", "//x/ancestor::node()"},
         deep,
         [](std::size_t count) { return count; }},
        {"deep: //x//y", {"", "//x//y", "//x//y"}, deep, [](std::size_t) { return std::size_t{1}; }},
    };
    return questions;
}

}  // namespace bench
