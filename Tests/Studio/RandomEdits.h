#pragma once

#include "document/Document.h"

#include <random>

namespace ka::studio::testing {

/// Does to a document whatever a user could, at random: the same edits for the same seed and document.
class RandomEdits {
  public:
    RandomEdits(Document& document, unsigned int seed) : _document(document), _random(seed) {}

    /// One edit, which may be refused.
    void doOne();

  private:
    int below(int limit) { return std::uniform_int_distribution<int>(0, limit - 1)(_random); }
    float between(float low, float high) { return std::uniform_real_distribution<float>(low, high)(_random); }
    kaUID anyOf(unsigned int type);
    kaUID anyLaidOut();
    std::vector<kaUID> someKeys();

    void editKeys();
    void dragKeys();
    void editSpans();
    void editTree();

    Document& _document;
    std::mt19937 _random;
};

} // namespace ka::studio::testing
