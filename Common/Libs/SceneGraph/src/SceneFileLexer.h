#pragma once

#include <OpenSG/OSGBaseTypes.h>
#include <string>
#include <string_view>

namespace osg {

/// Splits the text of a scene file into tokens. Blanks, line ends, commas and comments (from # to the end of
/// the line) only separate.
class SceneFileLexer {
  public:
    enum class Kind {
        Id,
        Number, ///< begins as a number does; whether it is one shows when it is read
        String,
        OpenBrace,
        CloseBrace,
        OpenBracket,
        CloseBracket,
        End,
        Unfinished, ///< a string without its closing quote
        Stray       ///< a character that cannot stand here
    };

    struct Token {
        Kind kind = Kind::End;
        std::string_view text; ///< of a string, what stands between the quotes, still escaped
        UInt32 line = 1;

        bool isId(std::string_view word) const { return kind == Kind::Id && text == word; }
    };

    /// @param text  must outlive the lexer and its tokens.
    explicit SceneFileLexer(std::string_view text);

    /// The token at hand.
    const Token& peek() const { return _token; }
    /// The token at hand; goes on to the next.
    Token next();

    /// What an escaped string means: \" and \\ are a quote and a backslash, everything else is itself.
    static std::string unescape(std::string_view text);
    static void appendQuoted(std::string_view text, std::string& out);

    /// True for what can be written bare as a name: not a number, not a reserved word, no special character.
    static bool isLegalId(std::string_view text);

    /// True when the two words are equal but for the case of a to z.
    static bool isWord(std::string_view text, std::string_view upperCase);

  private:
    void advance();
    void skipSeparators();
    std::size_t endOfRun(std::size_t from) const;
    void scanString();

    std::string_view _text;
    std::size_t _position = 0;
    UInt32 _line = 1;
    Token _token;
};

} // namespace osg
