#pragma once

#include <array>
#include <string_view>

namespace kestrin {

// The status services that the program knows: the only place where their addresses stand. Each address is the
// official public status page of the service: "https", the host, and the path "/". When a service moves its page,
// change it here; a test reads every row.

/// A service that comes with the program. Its page is an Atlassian Statuspage.
struct IncludedServiceRow {
    std::string_view id;
    std::string_view name;
    std::string_view page;
};

inline constexpr std::array<IncludedServiceRow, 2> includedServiceTable = {{
    {"openai", "OpenAI", "https://status.openai.com/"},
    {"claude", "Claude", "https://status.claude.com/"},
}};

/// A service that the user can add from the list; which feed its page has is found out when it is added. Aliases
/// that are empty do not count.
struct CatalogServiceRow {
    std::string_view id;
    std::string_view name;
    std::string_view category;
    std::string_view page;
    std::array<std::string_view, 3> aliases;
};

// clang-format off
inline constexpr std::array<CatalogServiceRow, 25> catalogServiceTable = {{
    {"github", "GitHub", "Developer platform",
        "https://www.githubstatus.com/", {"GitHub Actions", "GitHub Packages"}},
    {"atlassian", "Atlassian", "Developer platform",
        "https://status.atlassian.com/", {"Jira", "Confluence", "Bitbucket"}},
    {"vercel", "Vercel", "Hosting and edge",
        "https://www.vercel-status.com/", {"Vercel hosting"}},
    {"npm", "npm", "Developer platform",
        "https://status.npmjs.org/", {"npm registry"}},
    {"circleci", "CircleCI", "Developer platform",
        "https://status.circleci.com/", {"CircleCI builds"}},
    {"sentry", "Sentry", "Developer platform",
        "https://status.sentry.io/", {"Sentry monitoring"}},
    {"cloudflare", "Cloudflare", "Hosting and edge",
        "https://www.cloudflarestatus.com/", {"Cloudflare DNS", "Cloudflare CDN", "Workers"}},
    {"digitalocean", "DigitalOcean", "Hosting and edge",
        "https://status.digitalocean.com/", {"DigitalOcean Cloud"}},
    {"render", "Render", "Hosting and edge",
        "https://status.render.com/", {"Render hosting"}},
    {"fly-io", "Fly.io", "Hosting and edge",
        "https://status.flyio.net/", {"Fly hosting"}},
    {"supabase", "Supabase", "Data and backend",
        "https://status.supabase.com/", {"Supabase database"}},
    {"mongodb-atlas", "MongoDB Atlas", "Data and backend",
        "https://status.mongodb.com/", {"MongoDB Cloud", "Atlas"}},
    {"slack", "Slack", "Communication and work",
        "https://slack-status.com/", {"Slack messaging"}},
    {"discord", "Discord", "Communication and work",
        "https://discordstatus.com/", {"Discord messaging"}},
    {"zoom", "Zoom", "Communication and work",
        "https://www.zoomstatus.com/", {"Zoom meetings"}},
    {"figma", "Figma", "Communication and work",
        "https://status.figma.com/", {"Figma design"}},
    {"dropbox", "Dropbox", "Communication and work",
        "https://status.dropbox.com/", {"Dropbox storage"}},
    {"1password", "1Password", "Identity and access",
        "https://status.1password.com/", {"1Password password manager"}},
    {"shopify", "Shopify", "Commerce",
        "https://www.shopifystatus.com/", {"Shopify commerce"}},
    {"twilio", "Twilio", "Communication API",
        "https://status.twilio.com/", {"Twilio messaging", "SendGrid"}},
    {"datadog", "Datadog", "Observability and data",
        "https://status.datadoghq.com/", {"Datadog monitoring"}},
    {"grafana-cloud", "Grafana Cloud", "Observability and data",
        "https://status.grafana.com/", {"Grafana"}},
    {"snyk", "Snyk", "Security",
        "https://status.snyk.io/", {"Snyk security"}},
    {"twitch", "Twitch", "Consumer and work services",
        "https://status.twitch.com/", {}},
    {"epic-games", "Epic Games", "Consumer and work services",
        "https://status.epicgames.com/", {"Fortnite"}},
}};
// clang-format on

} // namespace kestrin
