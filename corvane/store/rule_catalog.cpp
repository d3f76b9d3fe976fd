#include "corvane/store/rule_catalog.hpp"

#include "corvane/store/store_facts.hpp"

#include <algorithm>

namespace corvane::store {
namespace {

using enum RuleLevel;

// Which stores a fixed rule belongs to.
enum class Stores { appStore, googlePlay, both };

struct FixedRule {
  Stores stores;
  RuleInfo info;
};

constexpr auto A = Stores::appStore;
constexpr auto P = Stores::googlePlay;
constexpr auto B = Stores::both;

// The rules that are not derived from the fields' data, in report order.
const std::vector<FixedRule>& fixedRules() {
  static const std::vector<FixedRule> rules = {
      {A,
       {"subtitle.missing", opportunity, "The listing has a subtitle.",
        "The subtitle is shown under the app name and is indexed for search."}},
      {A,
       {"keywords.duplicate", optimization, "No keyword appears twice, in any letter case.",
        "A keyword counts once; repeating it wastes characters of the limit."}},
      {A,
       {"keywords.spacing", optimization, "No spaces around the commas between keywords.",
        "Spaces next to commas count against the limit and add nothing to search."}},
      {A,
       {"keywords.repeats-name", optimization, "No keyword repeats a word of the app name or subtitle.",
        "Words in the name and subtitle are indexed already; repeating them wastes keyword space."}},
      {A,
       {"promotional-text.missing", opportunity, "The listing has a promotional text.",
        "Promotional text sits above the description and can change without a new version."}},
      {A,
       {"marketing-url.missing", opportunity, "The listing has a marketing URL.",
        "A marketing page tells users more than the listing can."}},
      {B,
       {"url.invalid", blocker, "Every address is a complete http or https address with a host.",
        "The store links to these pages from the product page; an address that leads nowhere is refused."}},
      {B,
       {"url.insecure", rejectionRisk, "Every address uses https.",
        "Review flags pages that are not served over a secure connection."}},
      {B,
       {"address.placeholder", rejectionRisk, "No address or e-mail uses a placeholder domain such as example.com.",
        "Placeholder addresses lead nowhere, and review checks that the links and the contact work."}},
      {A,
       {"copyright.year", rejectionRisk, "The copyright line starts with a year that is not in the future.",
        "The store shows the copyright line as written; review refuses one without a year or with a future year."}},
      {A,
       {"copyright.outdated", optimization, "The copyright year is the current year.",
        "An old year makes the app look unmaintained."}},
      {A,
       {"category.unknown", blocker, "Every category file names a category the store knows.",
        "The upload refuses a category the store does not have."}},
      {A,
       {"review-phone.format", rejectionRisk, "The review contact's phone number looks like a phone number.",
        "Review calls this number when something is unclear; a wrong one delays the review."}},
      {A,
       {"review-email.format", blocker, "The review contact's e-mail address is an e-mail address.",
        "The store refuses an address that is not an e-mail address, and review writes to it."}},
      {A,
       {"review.demo-account", blocker, "The demo account has both a user name and a password, or neither.",
        "Review signs in with the demo account; half of one cannot be used."}},
      {P,
       {"video.missing", opportunity, "The listing has a promo video.",
        "Play shows the video at the top of the listing, before the screenshots."}},
      {P,
       {"changelog.missing", optimization,
        "An update has release notes, for its version code or in changelogs/default.txt.",
        "Play shows them under \"What's new\"; an update without them tells users nothing."}},
      {P,
       {"title.emoji", rejectionRisk, "The title holds no emoji or emoticons.",
        "Google Play's metadata policy refuses emoji, emoticons and decorative symbols in the title."}},
      {P,
       {"title.capitals", rejectionRisk, "The title is not written in capitals, unless the brand is.",
        "Google Play's metadata policy refuses titles in ALL CAPS unless the brand is written so."}},
      {P,
       {"title.claim", rejectionRisk, "The title makes no ranking, price or promotion claim and no call to action.",
        "Google Play's metadata policy refuses words such as \"free\", \"best\", \"#1\", \"new\" or "
        "\"download now\" in the title."}},
      {A,
       {"content.other-platform", rejectionRisk, "No text names another mobile platform or its store.",
        "Store review refuses metadata that mentions other platforms."}},
      {B,
       {"content.placeholder", rejectionRisk, "No text holds placeholder or test text, or a placeholder address.",
        "Store review refuses listings that look unfinished."}},
      {A,
       {"content.future-feature", rejectionRisk, "No text promises features the app does not have yet.",
        "Store review refuses metadata that describes features that are coming later."}},
      {A,
       {"content.claim", rejectionRisk, "The name, subtitle and keywords make no price or ranking claim.",
        "Store review refuses prices, promotions and rankings in the name, subtitle and keywords."}},
      {B,
       {"content.profanity", rejectionRisk, "No text holds profanity.",
        "Store review refuses objectionable language in metadata."}},
      {B,
       {"content.forbidden", rejectionRisk, "No text holds a word the configuration forbids.",
        "Your team has forbidden these words in its listing."}},
      {B,
       {"locale.unknown", blocker, "Every locale folder is named with a locale code the store knows.",
        "The upload refuses a folder that is not a store locale; its texts would never reach the store."}},
  };
  return rules;
}

}  // namespace

std::vector<RuleInfo> ruleCatalog(const StoreFacts& facts) {
  std::vector<RuleInfo> catalog;
  std::vector<ListingField> fields(facts.localeFields().begin(), facts.localeFields().end());
  fields.insert(fields.end(), facts.sharedFields().begin(), facts.sharedFields().end());
  for (const auto field : fields) {
    const auto& about = facts.field(field);
    const std::string key(fieldKey(field));
    if (about.required) {
      catalog.push_back({key + ".required", blocker, about.label + " is filled in.",
                         field == ListingField::releaseNotes
                             ? "An update must say what is new; only a first version may leave it empty."
                             : "The store does not accept a submission without it."});
    }
    if (about.limit) {
      const std::string limit = std::to_string(*about.limit);
      catalog.push_back({key + ".length", blocker, about.label + " has at most " + limit + " characters.",
                         "The store refuses a longer text; characters are counted as people see them."});
    }
  }
  const Stores own = facts.store() == StoreId::googlePlay ? Stores::googlePlay : Stores::appStore;
  for (const auto& rule : fixedRules()) {
    if (rule.stores == own || rule.stores == Stores::both) catalog.push_back(rule.info);
  }
  return catalog;
}

std::vector<RuleInfo> everyStoreRuleCatalog() {
  auto catalog = ruleCatalog(StoreFacts::appStore());
  for (auto& rule : ruleCatalog(StoreFacts::googlePlay())) {
    if (findRule(catalog, rule.id) == nullptr) catalog.push_back(std::move(rule));
  }
  return catalog;
}

const RuleInfo* findRule(const std::vector<RuleInfo>& catalog, std::string_view id) {
  const auto rule = std::ranges::find(catalog, id, &RuleInfo::id);
  return rule == catalog.end() ? nullptr : &*rule;
}

}  // namespace corvane::store
