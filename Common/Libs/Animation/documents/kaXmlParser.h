#pragma once

#include "kaAnimationXmlRecord.h"
#include "kaDocumentParser.h"

#include <optional>

/// Parses a document from end to end into a record of its elements, without a DOM, before anything is made of
/// it: a document that is not well-formed creates nothing. What well-formed means is said with kaDocumentParser.
///
/// Cost: linear; about half the time of `QDomDocument::setContent`, memory for the record.
class kaXmlParser {
  public:
    using Fault = kaDocumentFault;
    using Visitor = kaDocumentParser::Visitor;

    static constexpr int MaximumDepth = kaDocumentParser::MaximumDepth;

    /// The elements below the root, or nothing and, where asked for, why.
    /// @{
    static std::optional<kaAnimationXmlRecord> readText(const QString& text, Fault* fault = nullptr);
    /// @param maximumSize in bytes; of what tells no size beforehand, like a pipe, at most 1 GiB is read.
    static std::optional<kaAnimationXmlRecord> readFile(const QString& name, unsigned long long maximumSize,
                                                        Fault* fault = nullptr);
    /// @}
};
