#include "encoders/layout/TowerSearch.h"

#include "encoders/graph/TowerCut.h"
#include "encoders/layout/LayoutRecognition.h"

#include <QDir>
#include <QFileInfo>
#include <QMap>

#include <algorithm>
#include <optional>

namespace Qorvane::Encoders {

namespace {

using Names = std::initializer_list<const char *>;

bool containsOneOf(const QString &text, Names parts)
{
    return std::any_of(parts.begin(), parts.end(),
                       [&text](const char *part) { return text.contains(QLatin1StringView(part)); });
}

/// By the endings that publishers give to the names of smaller variants; 0 is the most precise.
int precisionRank(const QString &path)
{
    const QString name = QFileInfo(path).completeBaseName().toLower();
    if (containsOneOf(name, {"q4", "bnb4", "q8f16", "int4"}))
        return 3;
    if (containsOneOf(name, {"quant", "int8"}))
        return 2;
    return containsOneOf(name, {"fp16", "float16", "half"}) ? 1 : 0;
}

/// Whether the name is that of one tower: these are looked at first, since a graph with both is large.
bool isTowerName(const QString &path)
{
    const QFileInfo file(path);
    const QString name = (file.dir().dirName() + u'/' + file.completeBaseName()).toLower();
    return containsOneOf(name, {"visi", "visual", "img", "image", "text", "txt"});
}

/// What of one model has been found so far.
struct Finds
{
    std::optional<OnnxGraph> vision;
    std::optional<OnnxGraph> text;
    std::optional<OnnxGraph> joint;

    bool hasBoth() const { return vision && text; }
};

Outcome<void> add(std::optional<OnnxGraph> &place, OnnxGraph graph, const QString &what)
{
    if (place)
        return problem(QStringLiteral("one %1").arg(what),
                       QStringLiteral("two: %1 and %2").arg(place->path(), graph.path()),
                       QStringLiteral("name the files that belong together instead of the folder"));
    place = std::move(graph);
    return {};
}

Outcome<void> addGraph(Finds &finds, const QString &path)
{
    auto graph = OnnxGraph::load(path);
    if (!graph)
        return tl::unexpected(graph.error());
    switch (kindOf(graph->graph())) {
    case GraphKind::vision:
        return add(finds.vision, *std::move(graph), QStringLiteral("graph for pictures"));
    case GraphKind::text:
        return add(finds.text, *std::move(graph), QStringLiteral("graph for texts"));
    case GraphKind::joint:
        return add(finds.joint, *std::move(graph), QStringLiteral("graph for pictures and texts"));
    case GraphKind::other:
        return {};
    }
    return {};
}

/// As the file tells them, or where it doesn't tell their shapes as the runtime finds them out.
Outcome<std::vector<ValueForm>> outputsOf(const OnnxGraph &graph)
{
    std::vector<ValueForm> declared = declaredOutputs(graph.graph());
    if (std::ranges::none_of(declared, [](const ValueForm &form) { return form.shape.empty(); }))
        return declared;
    const auto run = GraphRun::open(graph.path());
    if (!run)
        return tl::unexpected(run.error());
    return run->outputs();
}

Outcome<Towers> towersOf(OnnxGraph vision, OnnxGraph text, bool isCut)
{
    const auto visionOutputs = outputsOf(vision);
    if (!visionOutputs)
        return tl::unexpected(visionOutputs.error());
    const auto textOutputs = isCut ? visionOutputs : outputsOf(text);
    if (!textOutputs)
        return tl::unexpected(textOutputs.error());
    const auto picture = visionOutput(*visionOutputs, vision.fileName());
    if (!picture)
        return tl::unexpected(picture.error());
    const auto sentence = textOutput(*textOutputs, text.fileName());
    if (!sentence)
        return tl::unexpected(sentence.error());
    if (isCut && picture->name == sentence->name)
        return problem(
            QStringLiteral("a vector of a picture and one of a text from %1").arg(vision.fileName()),
            QStringLiteral("one for both: ") + formText(*picture),
            QStringLiteral("use an export with image_embeds and text_embeds"));
    // What else the graphs compute, and in a joint one the other tower, isn't asked for.
    if (!cutTower(vision.graph(), picture->name) || !cutTower(text.graph(), sentence->name))
        return problem(QStringLiteral("a graph that computes its outputs"),
                       QStringLiteral("one that doesn't: %1").arg(vision.fileName()),
                       QStringLiteral("export the model again"));
    return Towers{std::move(vision), std::move(text), *picture, *sentence, isCut, {}};
}

Outcome<Towers> fromFinds(Finds &finds)
{
    if (finds.hasBoth())
        return towersOf(*std::move(finds.vision), *std::move(finds.text), false);
    OnnxGraph text = finds.joint->copy();
    return towersOf(*std::move(finds.joint), std::move(text), true);
}

QString namesOf(const QStringList &paths)
{
    QStringList names;
    for (const QString &path : paths)
        names.append(QFileInfo(path).fileName());
    return names.join(QStringLiteral(", "));
}

tl::unexpected<Problem> incomplete(const Finds &finds, const QStringList &graphs)
{
    const QString expected = QStringLiteral("a graph for pictures and one for texts, or one for both");
    const QString remedy = QStringLiteral("name both files, or the folder that holds them");
    if (finds.vision)
        return problem(expected, QStringLiteral("only one for pictures: ") + finds.vision->fileName(),
                       remedy);
    if (finds.text)
        return problem(expected, QStringLiteral("only one for texts: ") + finds.text->fileName(), remedy);
    if (graphs.isEmpty())
        return problem(expected, QStringLiteral("no file named .onnx"), remedy);
    return problem(
        expected,
        QStringLiteral("no graph that takes a picture (rank 4, floats) or tokens (rank 2, integers) "
                       "among ") +
            namesOf(graphs),
        QStringLiteral("use an export of the model that takes pixel values and token ids"));
}

} // namespace

Outcome<Towers> findTowers(const QStringList &graphs)
{
    QMap<int, QStringList> byPrecision;
    for (const QString &path : graphs)
        byPrecision[precisionRank(path)].append(path);

    Finds overall;
    QStringList used;
    std::optional<Outcome<Towers>> towers;
    for (QStringList &paths : byPrecision) {
        std::ranges::stable_partition(paths, isTowerName);
        Finds finds;
        for (const QString &path : paths) {
            if (finds.hasBoth() && !isTowerName(path))
                break;
            if (auto added = addGraph(finds, path); !added)
                return tl::unexpected(added.error());
        }
        if (!finds.hasBoth() && !finds.joint) {
            // The towers may be given in two precisions.
            if (finds.vision && !overall.vision)
                overall.vision = std::move(finds.vision);
            if (finds.text && !overall.text)
                overall.text = std::move(finds.text);
            continue;
        }
        used = finds.hasBoth() ? QStringList{finds.vision->path(), finds.text->path()}
                               : QStringList{finds.joint->path()};
        towers = fromFinds(finds);
        break;
    }
    if (!towers && overall.hasBoth()) {
        used = {overall.vision->path(), overall.text->path()};
        towers = fromFinds(overall);
    }
    if (!towers)
        return incomplete(overall, graphs);
    if (*towers) {
        for (const QString &path : graphs) {
            if (!used.contains(path))
                (*towers)->passedOver.append(QFileInfo(path).fileName());
        }
    }
    return *std::move(towers);
}

} // namespace Qorvane::Encoders
