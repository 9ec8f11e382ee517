// Loading YAML files, against the parser that the library builds on.
#include "velmora/yaml/yaml.hpp"

#include <string>

#include <yaml-cpp/yaml.h>

#include "contender.hpp"
#include "temporary_file.hpp"
#include "velmora/config/value.hpp"

namespace bench {

using velmora::config::ConfigValue;
using velmora::config::List;

namespace {

constexpr std::size_t file_bytes = 10'000'000;

std::string manifest(const std::string& name, std::size_t number) {
    const std::string digits = std::to_string(number);
    return "- kind: Deployment\n"
           "  metadata:\n"
           "    name: " +
           name +
           "\n"
           "    labels: {app: " +
           name +
           ", tier: backend, part-of: \"orders\"}\n"
           "    annotations:\n"
           "      description: Answers the requests for part " +
           digits +
           " of the orders\n"
           "  spec:\n"
           "    replicas: " +
           std::to_string(number % 10 + 1) +
           "\n"
           "    paused: false\n"
           "    template:\n"
           "      containers:\n"
           "      - name: main            # the service itself\n"
           "        image: registry.example.org/orders/" +
           name + ":1.42." + digits +
           "\n"
           "        args: [\"--listen\", \"0.0.0.0:8080\", '--level=info']\n"
           "        ports:\n"
           "        - containerPort: 8080\n"
           "          protocol: TCP\n"
           "        env:\n"
           "        - name: SAMPLE_RATE\n"
           "          value: \"0.25\"\n"
           "        - name: REGION\n"
           "          value: eu-central-1\n"
           "        resources:\n"
           "          limits: {cpu: 0.5, memory: 512Mi}\n"
           "        readinessProbe:\n"
           "          path: /health\n"
           "          periodSeconds: 10\n"
           "        script: |\n"
           "          set -eu\n"
           "          exec /usr/bin/service --part " +
           digits + "\n";
}

std::string name_of(std::size_t number) {
    return "service-" + std::to_string(number);
}

struct Manifests {
    std::string text;
    std::size_t count = 0;
};

const Manifests& manifests() {
    static const Manifests made = [] {
        Manifests some;
        for (; some.text.size() < file_bytes; ++some.count)
            some.text += manifest(name_of(some.count), some.count);
        return some;
    }();
    return made;
}

const std::string& long_text() {
    static const std::string text = [] {
        std::string made;
        while (made.size() < file_bytes) made += "The words of one long text, all of them plain. ";
        return made;
    }();
    return text;
}

const std::string& manifest_file() {
    static const TemporaryFile file("manifests", manifests().text);
    return file.path();
}

const std::string& text_file() {
    static const TemporaryFile file("text", "\"" + long_text() + "\"\n");
    return file.path();
}

// The names and the replicas of all manifests: enough to see that a file was read.
using Summary = std::vector<std::pair<std::string, int>>;

Summary expected_summary() {
    Summary summary;
    for (std::size_t i = 0; i < manifests().count; ++i)
        summary.emplace_back(name_of(i), static_cast<int>(i % 10 + 1));
    return summary;
}

Summary summary_of(const ConfigValue& value) {
    Summary summary;
    for (const ConfigValue& item : value.get<List>()) {
        summary.emplace_back(item.find("metadata")->find("name")->get<std::string>(),
                             item.find("spec")->find("replicas")->get<int>());
    }
    return summary;
}

Summary summary_of_node(const YAML::Node& node) {
    Summary summary;
    for (const YAML::Node& item : node) {
        summary.emplace_back(item["metadata"]["name"].as<std::string>(),
                             item["spec"]["replicas"].as<int>());
    }
    return summary;
}

ConfigValue load(const std::string& path) {
    return velmora::yaml::load_file(path);
}

const Contender manifests_ours("yaml_manifests/ours", [](Run& run) {
    run.once([] { return load(manifest_file()); }, expected_summary(), summary_of);
});
const Contender manifests_limit("yaml_manifests/limit", [](Run& run) {
    run.once([] { return YAML::LoadFile(manifest_file()); }, expected_summary(), summary_of_node);
});

const Contender text_ours("yaml_text/ours", [](Run& run) {
    run.once([] { return load(text_file()); }, ConfigValue(long_text()));
});
const Contender text_limit("yaml_text/limit", [](Run& run) {
    run.once([] { return YAML::LoadFile(text_file()); }, long_text(),
             [](const YAML::Node& node) { return node.Scalar(); });
});

}  // namespace

}  // namespace bench
