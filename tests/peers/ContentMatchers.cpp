#include "peers/ContentMatchers.h"

#include <algorithm>
#include <set>
#include <stdexcept>

namespace Xml::test {

// --- Exactly ---

ExactMatcher::ExactMatcher(const ContentParticle& particle) : whole(add(particle)) {}

void ExactMatcher::connect(Places from, Places to) {
    for (std::size_t i = 0; i < following.size(); ++i) {
        if ((from >> i & 1) != 0) following[i] |= to;
    }
}

ExactMatcher::Part ExactMatcher::add(const ContentParticle& particle) {
    Part part = addOnce(particle);
    if (particle.mark == "*" || particle.mark == "+") connect(part.last, part.first);
    if (particle.mark == "*" || particle.mark == "?") part.canBeEmpty = true;
    return part;
}

ExactMatcher::Part ExactMatcher::addOnce(const ContentParticle& particle) {
    Part part;
    switch (particle.kind) {
    case ContentParticle::Name: {
        if (nameAt.size() == 64) throw std::length_error("a content model of more than 64 names");
        const Places place = Places{1} << nameAt.size();
        nameAt.push_back(particle.name);
        following.push_back(0);
        placesOf[particle.name] |= place;
        return {false, place, place};
    }
    case ContentParticle::Sequence:
        for (const ContentParticle& member : particle.members) {
            const Part next = add(member);
            connect(part.last, next.first);
            if (part.canBeEmpty) part.first |= next.first;
            part.last = next.canBeEmpty ? part.last | next.last : next.last;
            part.canBeEmpty = part.canBeEmpty && next.canBeEmpty;
        }
        return part;
    case ContentParticle::Choice:
        part.canBeEmpty = false;
        for (const ContentParticle& member : particle.members) {
            const Part next = add(member);
            part.first |= next.first;
            part.last |= next.last;
            part.canBeEmpty = part.canBeEmpty || next.canBeEmpty;
        }
        return part;
    }
    return part;
}

bool ExactMatcher::fits(const Names& names) const {
    Places reachable = whole.first;
    Places taken = 0;
    for (const std::string& name : names) {
        const auto places = placesOf.find(name);
        taken = places == placesOf.end() ? 0 : reachable & places->second;
        reachable = 0;
        for (std::size_t i = 0; i < following.size(); ++i) {
            if ((taken >> i & 1) != 0) reachable |= following[i];
        }
    }
    return names.empty() ? whole.canBeEmpty : (taken & whole.last) != 0;
}

bool ExactMatcher::namesDiffer(Places places) const {
    std::set<std::string> seen;
    for (std::size_t i = 0; i < nameAt.size(); ++i) {
        if ((places >> i & 1) != 0 && !seen.insert(nameAt[i]).second) return false;
    }
    return true;
}

bool ExactMatcher::isDeterministic() const {
    return namesDiffer(whole.first) &&
           std::all_of(following.begin(), following.end(), [this](Places places) { return namesDiffer(places); });
}

// --- Greedily ---

namespace {

bool take(const ContentParticle& particle, const Names& names, std::size_t& at);

bool takeOnce(const ContentParticle& particle, const Names& names, std::size_t& at) {
    switch (particle.kind) {
    case ContentParticle::Name:
        if (at == names.size() || names[at] != particle.name) return false;
        ++at;
        return true;
    case ContentParticle::Sequence:
        return std::all_of(particle.members.begin(), particle.members.end(),
                           [&](const ContentParticle& member) { return take(member, names, at); });
    case ContentParticle::Choice:
        return std::any_of(particle.members.begin(), particle.members.end(), [&](const ContentParticle& member) {
            const std::size_t before = at;
            if (take(member, names, at)) return true;
            at = before;
            return false;
        });
    }
    return false;
}

bool take(const ContentParticle& particle, const Names& names, std::size_t& at) {
    const bool mayBeAbsent = particle.mark == "?" || particle.mark == "*";
    const bool repeats = particle.mark == "+" || particle.mark == "*";
    for (bool first = true;; first = false) {
        const std::size_t before = at;
        if (!takeOnce(particle, names, at)) {
            if (first && !mayBeAbsent) return false;
            at = before;
            return true;
        }
        if (!repeats || at == before) return true;
    }
}

}  // namespace

bool fitsGreedily(const ContentParticle& particle, const Names& names) {
    std::size_t at = 0;
    return take(particle, names, at) && at == names.size();
}

bool hidesAlternatives(const ContentParticle& particle) {
    for (std::size_t i = 0; i < particle.members.size(); ++i) {
        const ContentParticle& member = particle.members[i];
        if (hidesAlternatives(member)) return true;
        const bool isLast = i + 1 == particle.members.size();
        if (particle.kind == ContentParticle::Choice && !isLast && ExactMatcher(member).fits({})) return true;
    }
    return false;
}

}  // namespace Xml::test
