#include "MessageScript.h"

#include "AppError.h"
#include "AppGlobals.h"
#include "CliOutput.h"
#include "PictureFile.h"
#include "SoundIntake.h"
#include "StoredColor.h"
#include "clsMMSManager.h"

#include <QFileInfo>
#include <QRect>

MessageScript::MessageScript(clsMMSManager& manager)
    : m_manager(manager), m_message(manager.message()) {}

const std::map<QString, MessageScript::Handler>& MessageScript::handlers() {
    static const std::map<QString, Handler> table{
        {"--name",
         [](MessageScript& s) {
             s.m_message->setName(s.take());
             return true;
         }},
        {"--size",
         [](MessageScript& s) {
             s.m_error = CliOutput::pictureSize("--size", s.take(), s.m_surface);
             return s.m_error.isEmpty();
         }},
        {"--slide", [](MessageScript& s) { return s.newSlide(); }},
        {"--color",
         [](MessageScript& s) {
             qint64 color = 0;
             return s.slide() && s.takeColor(color) && (s.slide()->setColor(color), true);
         }},
        {"--background", [](MessageScript& s) { return s.background(); }},
        {"--image", [](MessageScript& s) { return s.image(); }},
        {"--text", [](MessageScript& s) { return s.addText(); }},
        {"--font",
         [](MessageScript& s) { return s.text() && (s.text()->setFontName(s.take()), true); }},
        {"--font-size",
         [](MessageScript& s) {
             bool ok = false;
             const double size = s.take().toDouble(&ok);
             return s.text() && (ok && size > 0 ? (s.text()->setFontSize(size), true)
                                                : s.fail("expects a size in points"));
         }},
        {"--font-color",
         [](MessageScript& s) {
             qint64 color = 0;
             return s.text() && s.takeColor(color) && (s.text()->setFontColor(color), true);
         }},
        {"--bold", [](MessageScript& s) { return s.fontFlag("fbold"); }},
        {"--italic", [](MessageScript& s) { return s.fontFlag("fitalic"); }},
        {"--underline", [](MessageScript& s) { return s.fontFlag("funderline"); }},
        {"--align", [](MessageScript& s) { return s.textAlign(); }},
        {"--sound", [](MessageScript& s) { return s.sound(); }},
        {"--slide-text",
         [](MessageScript& s) { return s.slide() && (s.slide()->setText(s.take()), true); }},
    };
    return table;
}

bool MessageScript::apply(const QStringList& options) {
    m_rest = options;
    while (!m_rest.isEmpty()) {
        m_option = m_rest.takeFirst();
        const auto handler = handlers().find(m_option);
        if (handler == handlers().end())
            return fail("is not an option of new");
        if (!handler->second(*this))
            return false;
    }
    return true;
}

QString MessageScript::take() {
    return m_rest.isEmpty() ? QString() : m_rest.takeFirst();
}

bool MessageScript::fail(const QString& why) {
    if (m_error.isEmpty())
        m_error = m_option + " " + why;
    return false;
}

clsSlide* MessageScript::slide() {
    if (m_message->Slides().Count() == 0) {
        fail("needs a --slide before it");
        return nullptr;
    }
    return &m_message->Slides().Item(m_message->Slides().Count());
}

clsDrawObject* MessageScript::text() {
    if (!m_lastText)
        fail("needs a --text before it");
    return m_lastText;
}

bool MessageScript::takeRect(QRect& rect) {
    const QStringList parts = take().split(QLatin1Char(','));
    bool ok = parts.size() == 4;
    int values[4] = {};
    for (int i = 0; ok && i < 4; ++i)
        values[i] = parts[i].trimmed().toInt(&ok);
    if (!ok || values[2] <= 0 || values[3] <= 0)
        return fail("expects X,Y,W,H with a positive width and height");
    rect = QRect(values[0], values[1], values[2], values[3]);
    return true;
}

bool MessageScript::takeColor(qint64& color) {
    const std::optional<qint64> parsed = StoredColor::fromHex(take());
    if (!parsed)
        return fail("expects a colour as RRGGBB");
    color = *parsed;
    return true;
}

QString MessageScript::bringIn(const QString& prefix, const QString& file) {
    return readable(file) ? m_manager.GetUniqueFileName(prefix, file) : QString();
}

bool MessageScript::readable(const QString& file) {
    return QFileInfo(file).isFile() || fail("cannot read " + file);
}

bool MessageScript::copyIn(const QString& file, const QString& name) {
    QString why;
    return m_manager.CopyToWorkFolder(file, name, &why) ||
           fail("cannot copy " + file + " into the message: " + why);
}

// A picture that does not decode would leave a white slide; it is refused
// when it is added, like a missing file.
bool MessageScript::decodable(const QString& file) {
    try {
        PictureFile::probe(file);
        return true;
    } catch (const AppError& error) {
        return fail("refused: " + error.description());
    }
}

bool MessageScript::newSlide() {
    clsSlide& slide = m_message->Slides().Add();
    m_lastText = nullptr;
    m_slideHasDuration = false;
    bool numeric = false;
    const qint64 duration = m_rest.value(0).toLongLong(&numeric);
    if (numeric) {
        m_rest.removeFirst();
        if (duration <= 0)
            return fail("expects a duration above 0 ms");
        slide.setDuration(duration);
        m_slideHasDuration = true;
    }
    return true;
}

bool MessageScript::background() {
    clsSlide* current = slide();
    const QString file = take();
    const QString name = current ? bringIn("B", file) : QString();
    if (name.isEmpty())
        return false;
    // Animations are known by their names; anything else must decode as a
    // picture, whatever it is named.
    const int kind = clsDrawObjects::KindOfFile(name) == clsDrawObjects::BackAnimated
                         ? clsDrawObjects::BackAnimated
                         : clsDrawObjects::BackStill;
    // Checked before the copy, so a refused background leaves nothing behind.
    if ((kind == clsDrawObjects::BackStill && !decodable(file)) || !copyIn(file, name))
        return false;
    clsDrawObjects& objects = current->DrawObjects();
    // A background given twice replaces the first, which would otherwise be
    // saved in the message although no slide shows it.
    if (!objects.BackPicture().isEmpty())
        m_manager.DeleteWorkFolderFile(objects.BackPicture());
    objects.setBackType(kind);
    objects.setBackPicture(name);
    if (kind == clsDrawObjects::BackAnimated) {
        objects.setBackDuration(
            clsDrawObjects::AnimationLength(m_manager.GetWorkFolderPath() + name));
        clsDrawObjects::closeDevice();
    }
    return true;
}

bool MessageScript::image() {
    clsSlide* current = slide();
    const QString file = take();
    QRect rect;
    const QString name = current ? bringIn("I", file) : QString();
    if (name.isEmpty() || !decodable(file) || !takeRect(rect) || !copyIn(file, name))
        return false;
    DrawObjectProperties p = DrawObjectProperties::forImage(name, rect, ++m_objects);
    // Named by the file it came from, as the window names the pictures it places.
    p.name = QFileInfo(file).fileName();
    current->DrawObjects().Add().SetAllPproperties(p);
    return true;
}

bool MessageScript::addText() {
    clsSlide* current = slide();
    const QString text = take();
    QRect rect;
    if (!current || !takeRect(rect))
        return false;
    DrawObjectProperties p = DrawObjectProperties::forText(text, rect, ++m_objects);
    p.name = "Text" + QString::number(m_objects);
    m_lastText = &current->DrawObjects().Add();
    m_lastText->SetAllPproperties(p);
    return true;
}

bool MessageScript::sound() {
    clsSlide* current = slide();
    const QString file = take();
    if (!current || !readable(file))
        return false;
    SoundIntake intake(m_manager);
    SoundIntake::Info info = SoundIntake::measure(file);
    QString why;
    const QString name = intake.bringIn(file, info, &why);
    if (name.isEmpty())
        return fail("cannot copy " + file + " into the message: " + why);
    // Where the window would ask, a script goes on and says so.
    if (!SoundIntake::understood(info))
        CliOutput::warning(AppGlobals::text(
            "STR_SOUND_UNKNOWN_ADDED",
            "%0: the kind or length of this sound cannot be told; it was added all the same",
            {file}));
    const qint64 length = intake.lengthOf(name, info);
    current->setSound(name);
    current->setSoundName(QFileInfo(file).completeBaseName());
    current->setSoundDuration(std::max<qint64>(length, 0));
    // As in the window: a sound sets the slide's time unless the script gave one.
    if (!m_slideHasDuration && length > 0)
        current->setDuration(length);
    return true;
}

bool MessageScript::textAlign() {
    static const QStringList names{"left", "right", "center"};
    const int alignment = int(names.indexOf(take()));
    if (!text())
        return false;
    if (alignment < 0)
        return fail("expects left, center or right");
    m_lastText->setFontAlign(alignment);
    return true;
}

bool MessageScript::fontFlag(const char* attribute) {
    if (!text())
        return false;
    DrawObjectProperties p = m_lastText->GetAllPproperties();
    const QString name = attribute;
    p.bold = p.bold || name == "fbold";
    p.italic = p.italic || name == "fitalic";
    p.underline = p.underline || name == "funderline";
    m_lastText->SetAllPproperties(p);
    return true;
}

QString MessageScript::help() {
    return QStringLiteral(
        "vellumo-cli new OUT.mms [--name NAME] [--size WxH] SLIDE...\n"
        "\n"
        "Builds a message and saves it as OUT.mms. Options apply in order; each\n"
        "slide starts with --slide and the options after it fill that slide.\n"
        "\n"
        "  --name NAME               the message's name\n"
        "  --size WxH                the slide picture size positions refer to\n"
        "                            (default: the PhoneImageSize setting)\n"
        "  --slide [MS]              a new slide, with its duration in milliseconds\n"
        "                            (default: the SlideDuration setting)\n"
        "  --color RRGGBB            the slide's background colour\n"
        "  --background FILE         a background picture (bmp, jpg, png, tif, wbmp,\n"
        "                            tga, pcx, psd ...) or animation (gif, avi, mp4)\n"
        "  --image FILE X,Y,W,H      a picture placed in a rectangle\n"
        "  --text TEXT X,Y,W,H       a text placed in a rectangle, word-wrapped;\n"
        "                            the options below change the last text:\n"
        "      --font NAME           font name (default Verdana)\n"
        "      --font-size PT        font size in points (default 10)\n"
        "      --font-color RRGGBB   text colour (default black)\n"
        "      --bold, --italic, --underline\n"
        "      --align left|center|right\n"
        "  --sound FILE              the slide's sound; without a duration of its\n"
        "                            own the slide lasts as long as the sound\n"
        "  --slide-text TEXT         the slide's text message\n"
        "\n"
        "Example:\n"
        "  vellumo-cli new hello.mms --name Hello --slide 4000 --color FFFFCC \\\n"
        "      --image star.gif 10,10,40,40 --text \"Happy birthday\" 10,60,140,40 \\\n"
        "      --font-size 14 --bold --align center --sound chime.wav");
}
