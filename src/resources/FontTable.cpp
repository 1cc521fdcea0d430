#include "resources/FontTable.h"

namespace FontTable {

namespace {

const QString liberation = QStringLiteral("fonts-liberation2");
const QString bebas = QStringLiteral("fonts-bebas-neue");
const QString lobster = QStringLiteral("fonts-lobstertwo");
const QString dancing = QStringLiteral("fonts-dancingscript");
const QString kaushan = QStringLiteral("fonts-kaushanscript");
const QString leckerli = QStringLiteral("fonts-leckerli-one");
const QString cherry = QStringLiteral("fonts-cherrybomb");
const QString comfortaa = QStringLiteral("fonts-comfortaa");
const QString cabin = QStringLiteral("fonts-cabin");
const QString sketch = QStringLiteral("fonts-cabinsketch");
const QString spartan = QStringLiteral("fonts-league-spartan");
const QString slab = QStringLiteral("fonts-roboto-slab");
const QString yanone = QStringLiteral("fonts-yanone-kaffeesatz");
const QString jura = QStringLiteral("fonts-jura");
const QString blankenburg = QStringLiteral("fonts-blankenburg");
const QString kristi = QStringLiteral("fonts-kristi");
const QString staypuft = QStringLiteral("fonts-staypuft");
const QString creep = QStringLiteral("fonts-creep2");
const QString play = QStringLiteral("fonts-play");
const QString quicksand = QStringLiteral("fonts-quicksand");
const QString oldstandard = QStringLiteral("fonts-oldstandard");
const QString tomson = QStringLiteral("fonts-tomsontalks");
const QString dosis = QStringLiteral("fonts-dosis");
const QString summersby = QStringLiteral("fonts-summersby");
const QString radis = QStringLiteral("fonts-radisnoir");
const QString park = QStringLiteral("fonts-national-park");
const QString isabella = QStringLiteral("fonts-isabella");
const QString rufscript = QStringLiteral("fonts-rufscript");
const QString manrope = QStringLiteral("fonts-manrope");
const QString sixtyfour = QStringLiteral("fonts-sixtyfour");
const QString comic = QStringLiteral("fonts-comic-neue");

} // namespace

const QList<Face>& faces() {
    static const QList<Face> list{
        {"Helvetica Neue", "Liberation Sans", 400, false, liberation},
        {"CharmingStrangulation", "Kaushan Script", 400, false, kaushan},
        {"Mont-HeavyDEMO", "League Spartan", 900, false, spartan},
        {"Shedaytia", "Dancing Script", 700, false, dancing},
        {"Sunshine", "Leckerli One", 400, false, leckerli},
        {"Undella", "Kristi", 500, false, kristi},
        {"Rubik-Bold", "Manrope", 700, false, manrope},
        {"WatermelonScriptDemo", "Lobster Two", 700, false, lobster},
        {"BudmoJiggler-Regular", "Cherry Bomb", 400, false, cherry},
        {"HemondalisaRegular", "Isabella", 500, false, isabella},
        {"KURTISBLOW", "Tomson Talks", 400, false, tomson},
        {"SunsetBoulevard", "Lobster Two", 700, true, lobster},
        {"yorkwhiteletter", "Blankenburg_UNZ1A", 400, false, blankenburg},
        {"Amandita", "Dancing Script", 400, false, dancing},
        {"BlessedScript", "Summersby", 400, false, summersby},
        {"Boulevard", "Lobster Two", 400, true, lobster},
        {"HeadlinerNo.45", "Bebas Neue", 700, false, bebas},
        {"JMHEspinosa-Bold", "Roboto Slab", 700, false, slab},
        {"JMHEspinosaOrnaments-Regular", "Cabin Sketch", 400, false, sketch},
        {"JMHEspinosa-Regular", "Roboto Slab", 400, false, slab},
        {"LOUDANDCLEARPERSONALUSE", "StayPuft", 500, false, staypuft},
        {"PlaneCrash", "creep2", 500, false, creep},
        {"SmileandWave", "Comic Neue", 700, false, comic},
        {"WhiteOnBlack", "Cabin Sketch", 700, false, sketch},
        {"Bigdey-Demo", "Rufscript", 400, false, rufscript},
        {"BlackRotiesRegular", "Radis Sans", 500, false, radis},
        {"ClasicalderibbonRegular", "Old Standard TT", 400, false, oldstandard},
        {"HangingLetters", "National Park", 400, false, park},
        {"GiddyupStd", "Lobster Two", 400, false, lobster},
        {"GrandHotel-Regular", "Kaushan Script", 400, false, kaushan},
        {"KodinahDiaryRegular", "Comic Neue", 400, false, comic},
        {"Sandwich", "Quicksand", 700, false, quicksand},
        {"APompadourDisplaySample", "Old Standard TT", 700, false, oldstandard},
        {"ActionManShaded-Italic", "Play", 700, true, play},
        {"ActionManShaded", "Play", 700, false, play},
        {"AlfaSlabOne-Regular", "Roboto Slab", 700, false, slab},
        {"Algerian", "Old Standard TT", 700, false, oldstandard},
        {"AlpacaScarlettDemo", "Kristi", 500, false, kristi},
        {"AlpacaSolidify", "StayPuft", 500, false, staypuft},
        {"AlphaEcho", "Jura", 700, false, jura},
        {"Alstoria-Regular", "Old Standard TT", 400, true, oldstandard},
        {"AmericanCaptain", "Bebas Neue", 400, false, bebas},
        {"AzonixRegular", "C-64", 400, false, sixtyfour},
        {"Bauhaus93", "Comfortaa", 700, false, comfortaa},
        {"BebasNeueBold", "Bebas Neue", 700, false, bebas},
        {"BebasNeue-Regular", "Bebas Neue", 400, false, bebas},
        {"Blackout-Midnight", "League Spartan", 800, false, spartan},
        {"CallOfOpsDuty", "Yanone Kaffeesatz", 700, false, yanone},
        {"Catamaran-Regular", "Manrope", 400, false, manrope},
        {"CharlieZonk", "Comic Neue", 700, true, comic},
        {"CiclopeBlack-Black", "League Spartan", 900, false, spartan},
        {"CocoBikeR", "Dosis", 800, false, dosis},
        {"DunkinSans-BoldItalic", "Cabin", 700, true, cabin},
        {"DunkinSans-Bold", "Cabin", 700, false, cabin},
        {"DunkinSans-Italic", "Cabin", 400, true, cabin},
        {"DunkinSans", "Cabin", 400, false, cabin},
        {"EarthOrbiterSuper-Italic", "Jura", 700, true, jura},
        {"ElephantGunAcademy", "Yanone Kaffeesatz", 400, false, yanone},
        {"ElephantGunAcademyItalic", "Yanone Kaffeesatz", 400, true, yanone},
        {"FascinateInline-Regular", "National Park Outline", 400, false, park},
        {"FastHand", "Kaushan Script", 400, false, kaushan},
        {"FranchiseFilled-Regular", "Dosis", 700, false, dosis},
        {"HarlowSolid", "Lobster Two", 700, true, lobster},
        {"Limelight-Regular", "Comfortaa", 300, false, comfortaa},
        {"moonbeam-Regular", "Dancing Script", 400, false, dancing},
        {"NexaSlabBoldFREE", "Roboto Slab", 700, false, slab},
        {"NovaSOLID-SOLID", "Play", 400, false, play},
        {"QuantumRegular", "Jura", 400, false, jura},
    };
    return list;
}

const Face* face(const QString& name) {
    static const Face catalogueTitle{"AsimovWid", "Manrope", 800, false, manrope};
    if (name == catalogueTitle.name)
        return &catalogueTitle;
    for (const Face& f : faces())
        if (f.name == name)
            return &f;
    return nullptr;
}

} // namespace FontTable
