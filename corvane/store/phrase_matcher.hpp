#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace corvane::store {

/// A place in a text: 1-based line and 1-based column, the column counted in user-perceived
/// characters (grapheme clusters, as `corvane::characterCount` counts them) from the start of
/// the line.
struct TextPosition {
  std::int64_t line = 1;
  std::int64_t column = 1;

  friend bool operator==(const TextPosition&, const TextPosition&) = default;
};

/// The position of byte `offset` in `text`. "\n", "\r\n" (one break) and a lone "\r" end
/// lines. An offset past the end counts as the end of the text; an offset inside a character
/// (such as one between "\r" and "\n") counts that character as already passed.
TextPosition positionAt(std::string_view text, std::size_t offset);

/// One occurrence of a phrase: the bytes `[offset, offset + length)` of the text, which
/// matched the phrase with index `phrase`.
struct PhraseMatch {
  std::size_t offset = 0;
  std::size_t length = 0;
  std::size_t phrase = 0;

  friend bool operator==(const PhraseMatch&, const PhraseMatch&) = default;
};

/// A web or e-mail address found in a text: the bytes `[offset, offset + length)`, and its
/// host in lower case ("example.com").
struct LinkSpan {
  std::size_t offset = 0;
  std::size_t length = 0;
  std::string host;

  friend bool operator==(const LinkSpan&, const LinkSpan&) = default;
};

/// Every web or e-mail address in `text`, in order. A link is a run of characters without
/// white space that contains "://", starts with "www." (in any case) or holds an '@' with a
/// '.' somewhere after it. Opening brackets and quotes ( [ < " ' ‘ “ « „ ) in front of the
/// run and closing punctuation . , ; : ! ? ) ] > " ' ’ ” » at its end are not part of it,
/// except a ')' or ']' that closes a bracket opened inside the link ("…/Foo_(bar)").
///
/// The host is the part after "://" up to '/', '?' or '#', without any "user@" and ":port";
/// for a "www." link the part up to the first '/', '?', '#' or ':'; for an e-mail address
/// the part after the last '@' up to '/', '?' or '#'.
std::vector<LinkSpan> findLinks(std::string_view text);

/// A text split into the tokens `PhraseMatcher` compares (see there), with the web and
/// e-mail addresses in it. Split a text once and search it with any number of matchers.
/// The text must outlive the object.
class TokenizedText {
 public:
  /// The longest text that can be split, in bytes (2 GiB - 1).
  static constexpr std::size_t kMaxSize = 0x7FFF'FFFF;

  TokenizedText() = default;
  /// Splits `text`, as `assign` does.
  explicit TokenizedText(std::string_view text) { assign(text); }

  /// Splits `text` afresh, reusing the memory of the last text. Throws `std::length_error`
  /// for a text longer than `kMaxSize`.
  void assign(std::string_view text);

  /// The text that was split.
  std::string_view text() const noexcept { return text_; }

  /// The text's web and e-mail addresses, as `findLinks` gives them.
  const std::vector<LinkSpan>& links() const noexcept { return links_; }

 private:
  friend class PhraseMatcher;

  // Offsets are 32 bits wide: a text has tens of thousands of tokens, and the smaller they
  // are the faster they are written and read.
  struct Token {
    std::uint32_t offset;  // the bytes of the text it covers
    std::uint32_t length;
    std::uint32_t keyBegin;  // its comparison form, in keys_ or (keyInText) in the text itself
    std::uint32_t keyEnd;
    bool spaceBefore;  // white space separates it from the token before
    bool inLink;
    bool keyInText;  // a token already in its comparison form is compared where it stands
  };

  void split(std::string_view text, bool findLinks);
  // Records the link in the bytes [runStart, runEnd) of the text, the run of characters
  // without white space just split, if they hold one, and marks its tokens.
  void markLink(std::size_t runStart, std::size_t runEnd);
  // Moves the key of `token` into keys_, so that more can be appended to it.
  void ownKey(Token& token);
  // Whether `token`'s key is still the text it covers, up to `offset`, so that what is
  // written there next can join the key where it stands.
  static bool keyContinuesInText(const Token& token, std::uint32_t offset) noexcept {
    return token.keyInText && token.keyEnd == offset;
  }
  std::string_view key(const Token& token) const noexcept {
    // Offsets are in range by construction: no bounds check for a look-up made per token.
    const char* base = token.keyInText ? text_.data() : keys_.data();
    return {base + token.keyBegin, std::size_t{token.keyEnd} - token.keyBegin};
  }

  std::string_view text_;
  std::vector<Token> tokens_;
  std::string keys_;
  std::vector<LinkSpan> links_;
};

/// A compiled list of words and phrases to look for, matched on whole words, ignoring case.
///
/// Texts and phrases are read as tokens: words, which are runs of word characters (Unicode
/// letters, marks, numbers and connector punctuation such as '_'), and single characters
/// that are neither word characters nor white space (punctuation, symbols, each invalid
/// byte). So "#1" is '#' then "1" and "example.com" is "example", '.' and "com". A mark
/// after a punctuation or symbol character belongs to it and is ignored when comparing, so
/// the variation selector of "⭐️" neither starts a word nor stops "⭐️Android" matching.
/// Scripts that glue words together are split further: each Han, Hiragana, Katakana, Thai,
/// Lao, Myanmar or Khmer letter (with its marks) is a word of its own, and a run of Hangul
/// is a word apart from the letters of other scripts, so "Google Playで" and
/// "Google Play에서" hold the words "google" and "play", and "近日公開" matches in "近日公開予定".
///
/// A phrase matches where the text holds the same tokens: white space between two tokens of
/// the phrase stands for one or more white space or line-break characters (see
/// `corvane::isWhitespaceOrNewline`), and tokens without white space between them must be
/// adjacent in the text too. Tokens compare after the simple lower-case mapping of each code
/// point ("ÄPFEL" is "äpfel", but "STRASSE" is not "straße"), with ’ (U+2019) the same as
/// '\''. No Unicode normalisation is done: "é" written as "e" and U+0301 is a different word
/// from the precomposed "é", and a phrase "cafe" does not match it. Since words are compared
/// whole, "tizen" does not match "Notizen", and "#1" does not match "#10" but does "#1!".
///
/// Words inside web and e-mail addresses (as `findLinks` finds them) are never matched, so
/// a phrase that is itself an address only matches where the text does not read as a link.
///
/// Once its phrases are added, a matcher may be searched from several threads at once.
class PhraseMatcher {
 public:
  /// Adds `phrase` and returns its index; indices count up from 0 in the order phrases were
  /// added. A phrase without tokens (empty or all white space) is not added and returns
  /// nothing. Adding the same phrase twice gives two indices; matches report the first.
  std::optional<std::size_t> add(std::string_view phrase);

  /// Removes every phrase, keeping the memory for the next ones: a matcher cleared and
  /// filled again matches exactly as a new one would.
  void clear() noexcept;

  /// The number of phrases added.
  std::size_t size() const noexcept { return phrases_.size(); }

  /// Whether no phrase has been added.
  bool empty() const noexcept { return phrases_.empty(); }

  /// The phrase with index `index` as it was added. Throws `std::out_of_range` when there is
  /// no such phrase.
  std::string_view phrase(std::size_t index) const;

  /// Every occurrence of a phrase in `text`, in text order and not overlapping. Where several
  /// phrases match at the same place, the one covering most tokens wins (and of those the
  /// first added), so "Google Play" beats "Google"; matching then resumes after it.
  std::vector<PhraseMatch> findAll(const TokenizedText& text) const;

  /// `findAll` on `text` split for this one search.
  std::vector<PhraseMatch> findAll(std::string_view text) const;

 private:
  // A token of a phrase: its lowered text ends at `keyEnd` in keys_, and `spaceBefore`
  // tells whether white space separates it from the token before.
  struct Token {
    std::size_t keyEnd;
    bool spaceBefore;
  };

  // A phrase's text, lowered tokens and tokens, each a range of the shared buffers, and the
  // next phrase with the same first token (kNone at the end of the chain).
  struct Phrase {
    std::size_t textBegin, textEnd;
    std::size_t keyBegin;
    std::size_t tokenBegin, tokenEnd;
    std::size_t next;
  };

  // Where the first phrase with the first token `key` (of hash `hash`) is, as an index into
  // firstPhrase_; an empty slot when there is none.
  std::size_t slotOf(std::string_view key, std::size_t hash) const noexcept;
  std::string_view firstKey(const Phrase& phrase) const noexcept;
  bool matchesAt(const Phrase& phrase, const TokenizedText& text, std::size_t first) const noexcept;
  void grow();

  static constexpr std::size_t kNone = static_cast<std::size_t>(-1);

  std::string texts_;  // the phrases as added, one after another
  std::string keys_;   // their lowered tokens, one after another
  std::vector<Token> tokens_;
  std::vector<Phrase> phrases_;
  // An open-addressing table from first token to the first phrase (and through `next`, all
  // others, in the order they were added) that starts with it; a power of two in size.
  std::vector<std::size_t> firstPhrase_;
  std::vector<std::size_t> lastPhrase_;  // the chain's end, beside firstPhrase_, for appending
  std::size_t firstTokens_ = 0;          // the slots in use
  // One bit for each first token (by its length and first and last bytes), set in `add`:
  // most words of a text miss here and are passed over without being hashed.
  std::array<std::uint64_t, 64> firstTokenBits_{};
};

}  // namespace corvane::store
