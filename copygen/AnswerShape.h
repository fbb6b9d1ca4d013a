#pragma once

// What a model is told about the form of its answer.

inline constexpr int mostAnswerTokens = 220;

// A JSON schema, with lengths at which the object mostly ends by itself within those tokens.
inline constexpr char answerSchema[] =
    R"({"type":"object","properties":{)"
    R"("title":{"type":"string","maxLength":42},)"
    R"("subtitle":{"type":"string","maxLength":90},)"
    R"("tagline":{"type":"string","maxLength":220},)"
    R"("callToAction":{"type":"string","maxLength":24},)"
    R"("publicationCaption":{"type":"string","maxLength":300}},)"
    R"("required":["title","subtitle","tagline","callToAction","publicationCaption"],)"
    R"("additionalProperties":false})";
